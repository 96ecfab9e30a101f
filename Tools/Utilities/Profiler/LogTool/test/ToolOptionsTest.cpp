// The command line: wrong ones exit with status 2 and the command's usage on the standard error,
// help goes to the standard output, and options reach the command.
#include "ToolOptions.h"
#include "ToolRun.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

using testing::runTool;
using testing::ToolRun;

TEST(ToolOptions, WrongCommandLinesExitWithUsage) {
  struct Case {
    const char* what;
    std::vector<std::string> args;
    const char* message;
    const char* usage;
  };
  const Case cases[] = {
      {"no command", {}, "no command given", "usage: kvt-profile-log COMMAND"},
      {"unknown command",
       {"frame", "-o", "x"},
       "unknown command frame",
       "usage: kvt-profile-log COMMAND"},
      {"dump without a log", {"dump"}, "dump needs a log", "usage: kvt-profile-log dump"},
      {"dump of two logs",
       {"dump", "a.log", "b.log"},
       "dump takes one log, not also b.log",
       "usage: kvt-profile-log dump"},
      {"dump with an option",
       {"dump", "--all", "a.log"},
       "unknown option --all",
       "usage: kvt-profile-log dump"},
      {"build without -o",
       {"build", "in.json"},
       "build needs -o LOG",
       "usage: kvt-profile-log build"},
      {"-o without its value",
       {"build", "in.json", "-o"},
       "-o needs a value",
       "usage: kvt-profile-log build"},
      {"build without input",
       {"build", "-o", "x.log"},
       "build needs a dump document",
       "usage: kvt-profile-log build"},
      {"build of two documents",
       {"build", "a.json", "b.json", "-o", "x.log"},
       "build takes one dump document",
       "usage: kvt-profile-log build"},
      {"build --chunks without files",
       {"build", "--chunks", "-o", "x.log"},
       "build --chunks needs at least one chunk file",
       "usage: kvt-profile-log build"},
      {"synth without -o",
       {"synth", "--graphs", "2"},
       "synth needs -o LOG",
       "usage: kvt-profile-log synth"},
      {"synth with a stray argument",
       {"synth", "-o", "x.log", "extra"},
       "synth takes no extra",
       "usage: kvt-profile-log synth"},
      {"graphs not a number",
       {"synth", "-o", "x.log", "--graphs", "two"},
       "--graphs needs a whole number from 0 to 100000, not 'two'",
       "usage: kvt-profile-log synth"},
      {"steps beyond the limit",
       {"synth", "-o", "x.log", "--steps", "100001"},
       "--steps needs a whole number from 0 to 100000, not '100001'",
       "usage: kvt-profile-log synth"},
      {"negative executions",
       {"synth", "-o", "x.log", "--executions", "-1"},
       "--executions needs a whole number",
       "usage: kvt-profile-log synth"},
      {"no messages per chunk",
       {"synth", "-o", "x.log", "--messages-per-chunk", "0"},
       "--messages-per-chunk needs a whole number from 1 to 1000000",
       "usage: kvt-profile-log synth"},
      {"seed beyond 64 bits",
       {"synth", "-o", "x.log", "--seed", "18446744073709551616"},
       "--seed needs a whole number",
       "usage: kvt-profile-log synth"},
      {"number with trailing text",
       {"synth", "-o", "x.log", "--steps", "4x"},
       "--steps needs a whole number from 0 to 100000, not '4x'",
       "usage: kvt-profile-log synth"},
      {"unknown detail",
       {"synth", "-o", "x.log", "--detail", "full"},
       "--detail is linting or basic, not 'full'",
       "usage: kvt-profile-log synth"},
      {"option without its value",
       {"synth", "-o", "x.log", "--seed"},
       "--seed needs a value",
       "usage: kvt-profile-log synth"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ToolRun run = runTool(c.args);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.find(std::string("kvt-profile-log: ") + c.message), 0u) << run.err;
    EXPECT_NE(run.err.find(c.usage), std::string::npos) << run.err;
  }
}

TEST(ToolOptions, HelpGoesToStandardOutput) {
  struct Case {
    const char* what;
    std::vector<std::string> args;
    const char* usage;
  };
  const Case cases[] = {
      {"--help", {"--help"}, "usage: kvt-profile-log COMMAND"},
      {"-h", {"-h"}, "usage: kvt-profile-log COMMAND"},
      {"help", {"help"}, "usage: kvt-profile-log COMMAND"},
      {"help on a command", {"help", "synth"}, "usage: kvt-profile-log synth"},
      {"dump --help", {"dump", "--help"}, "usage: kvt-profile-log dump"},
      {"build -h among other options", {"build", "a.json", "-h"}, "usage: kvt-profile-log build"},
      {"synth --help", {"synth", "-o", "x.log", "--help"}, "usage: kvt-profile-log synth"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ToolRun run = runTool(c.args);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out.find(c.usage), 0u) << run.out;
  }
}

TEST(ToolOptions, SynthOptionsReachTheCommand) {
  const std::vector<std::string_view> args = {"synth",
                                              "--seed",
                                              "7",
                                              "-o",
                                              "run.log",
                                              "--graphs",
                                              "3",
                                              "--steps",
                                              "0",
                                              "--executions",
                                              "1000000000000",
                                              "--detail",
                                              "basic",
                                              "--queue-wait",
                                              "--messages-per-chunk",
                                              "1"};
  const ToolCommand command = parseToolOptions(args);
  ASSERT_TRUE(std::holds_alternative<SynthOptions>(command));
  const auto& options = std::get<SynthOptions>(command);
  EXPECT_EQ(options.outputPath, "run.log");
  EXPECT_EQ(options.graphs, 3u);
  EXPECT_EQ(options.executions, 1000000000000u);
  EXPECT_EQ(options.steps, 0u);
  EXPECT_EQ(options.detail, SynthDetail::basic);
  EXPECT_TRUE(options.queueWait);
  EXPECT_EQ(options.messagesPerChunk, 1u);
  EXPECT_EQ(options.seed, 7u);
}

} // namespace
} // namespace kvt::profiling
