// The tool's command line: its commands and the checks on their options. A wrong line exits with
// status 2 and says what is wrong on the standard error; help and the version go to the standard
// output.
#include "ToolRun.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

using testing::runTool;
using testing::ToolRun;

TEST(ToolCommandLine, WrongCommandLinesExitWithTwo) {
  struct Case {
    const char* what;
    std::vector<std::string> args;
    const char* message; // follows "kvt-profile-log: "
  };
  const Case cases[] = {
      {"no command", {}, "A subcommand is required"},
      {"unknown command", {"frame", "-o", "x"}, "unknown command 'frame'"},
      {"dump without a log", {"dump"}, "LOG is required"},
      {"dump of two logs", {"dump", "a.log", "b.log"}, "The following argument was not expected"},
      {"build without -o", {"build", "in.json"}, "-o is required"},
      {"build --chunks without files", {"build", "--chunks", "-o", "x.log"}, "JSON is required"},
      {"build of two documents",
       {"build", "a.json", "b.json", "-o", "x.log"},
       "build takes one dump document; use --chunks for one file per chunk"},
      {"synth without -o", {"synth", "--graphs", "2"}, "-o is required"},
      {"steps beyond the limit",
       {"synth", "-o", "x.log", "--steps=100001"},
       "--steps: needs a whole number from 0 to 100000, not '100001'"},
      {"no chunk without messages",
       {"synth", "-o", "x.log", "--messages-per-chunk", "0"},
       "--messages-per-chunk: needs a whole number from 1 to 1000000, not '0'"},
      {"seed beyond 64 bits",
       {"synth", "-o", "x.log", "--seed", "18446744073709551616"},
       "--seed: needs a whole number from 0 to 18446744073709551615"},
      {"unknown detail", {"synth", "-o", "x.log", "--detail", "full"}, "--detail: "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ToolRun run = runTool(c.args);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.find(std::string("kvt-profile-log: ") + c.message), 0u) << run.err;
  }
}

TEST(ToolCommandLine, HelpAndVersionGoToStandardOutput) {
  struct Case {
    const char* what;
    std::vector<std::string> args;
    const char* text;
  };
  const Case cases[] = {
      {"overview", {"--help"}, "Usage: kvt-profile-log [OPTIONS] SUBCOMMAND"},
      {"one command", {"synth", "-o", "x.log", "-h"}, "Usage: kvt-profile-log synth [OPTIONS]"},
      {"version", {"--version"}, "kvt-profile-log " KVT_PROFILER_VERSION "\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ToolRun run = runTool(c.args);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_NE(run.out.find(c.text), std::string::npos) << run.out;
  }
}

} // namespace
} // namespace kvt::profiling
