// The built viewer run as a subprocess: exit codes, standard output and standard error.
#include "ProgramRun.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <vector>

namespace kvt::profiling {
namespace {

using testing::fixtureLog;
using testing::ProgramRun;
using testing::runProgram;
using testing::TempDir;

// Runs the viewer in a fresh working directory, so relative paths print the same every time.
ProgramRun runViewer(const std::vector<std::string>& arguments) {
  const TempDir workingDir;
  return runProgram(KVT_VIEWER_PROGRAM, arguments, workingDir.path());
}

TEST(ViewerProgram, MatchesGoldenOutputs) {
  const std::string validLog = fixtureLog("header-and-compose");
  const std::string incompatibleLog = KVT_GOLDEN_LOG_DIR "/without-detailed-events.log";
  struct Case {
    const char* what;
    const char* golden; // golden/<golden>.stdout and .stderr
    std::vector<std::string> arguments;
    int exitCode;
  };
  const Case cases[] = {
      {"help", "help", {"--help"}, 0},
      {"no arguments", "no-arguments", {}, 2},
      {"unknown option", "unknown-option", {"--input", "a.log", "--bogus"}, 2},
      {"visibility out of range", "bad-visibility", {"--input", "a.log", "--visibility", "128"}, 2},
      {"missing input file", "missing-input", {"--input", "missing.log"}, 1},
      {"missing input file, csv reader",
       "missing-input",
       {"--input", "missing.log", "--reader", "csv", "--output", "out.csv"},
       1},
      {"missing input file, reports silenced",
       "missing-input-quiet",
       {"--input", "missing.log", "--log-level", "0"},
       1},
      {"trace written, every report shown",
       "trace-verbose",
       {"--input", validLog, "--output", "trace.json", "--log-level", "5"},
       0},
      {"messages of level 0 hidden",
       "trace-visibility-0",
       {"--input", validLog, "--output", "trace.json", "--visibility", "0"},
       0},
      {"trace reader without --output", "trace-without-output", {"--input", validLog}, 1},
      {"trace file in a missing folder",
       "trace-unwritable",
       {"--input", validLog, "--output", "missing/trace.json"},
       1},
      {"trace file that is a folder", "trace-folder", {"--input", validLog, "--output", "."}, 1},
      {"csv file in a missing folder",
       "csv-unwritable",
       {"--input", validLog, "--reader", "csv", "--output", "missing/events.csv"},
       1},
      {"log without the linting profile",
       "trace-incompatible",
       {"--input", incompatibleLog, "--output", "trace.json"},
       1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ProgramRun run = runViewer(c.arguments);
    EXPECT_EQ(run.exitCode, c.exitCode);
    testing::expectGoldenRun(c.golden, run);
  }
}

TEST(ViewerProgram, PassesTheExtendedBackendReportFlag) {
  // With the flag the base reader dumps the log's object events to files: teardown.bin holds the
  // one byte the log gives it.
  const std::string log = KVT_GOLDEN_LOG_DIR "/csv-every-method.log";
  for (const bool extended : {false, true}) {
    SCOPED_TRACE(extended ? "extended" : "plain");
    const TempDir workingDir;
    std::vector<std::string> arguments{"--input", log, "--reader", "csv"};
    if (extended)
      arguments.push_back("--extended-backend-report");
    EXPECT_EQ(runProgram(KVT_VIEWER_PROGRAM, arguments, workingDir.path()).exitCode, 0);
    EXPECT_EQ(testing::readFile(workingDir.path() / "teardown.bin"), extended ? "\x04" : "");
  }
}

TEST(ViewerProgram, ExplainsAReaderLibraryItCannotUse) {
  // Absolute on every platform: Windows' paths start with the drive.
  const std::string missing =
      (std::filesystem::current_path().root_path() / "nonexistent" / "libR.so").string();
  // The path as the viewer prints it: in the platform's own form.
  const std::string notAReader =
      std::filesystem::path(KVT_NOT_A_READER).lexically_normal().string();
  struct Case {
    const char* what;
    std::string reader;
    std::string error; // the start of standard error
  };
  const Case cases[] = {
      {"no such file", missing, "kvt-profile-viewer: cannot load reader library " + missing + ": "},
      {"a library without the reader exports", KVT_NOT_A_READER,
       testing::asWrittenInTextMode("kvt-profile-viewer: " + notAReader +
                                    " is not a reader library: it does not export createReader, "
                                    "deleteReader, registerLogger, unregisterLogger\n")},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ProgramRun run = runViewer({"--input", "a.log", "--reader", c.reader});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardOutput, "");
    EXPECT_TRUE(run.standardError.starts_with(c.error)) << run.standardError;
  }
}

} // namespace
} // namespace kvt::profiling
