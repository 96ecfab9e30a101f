// The installed viewer finds its readers from any working directory and does its whole job.
#include "ProgramRun.h"
#include "support/GoldenCases.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

using testing::goldenCaseDir;
using testing::ProgramRun;
using testing::readFile;
using testing::runProgram;
using testing::TempDir;

TEST(ViewerInstall, RunsFromTheInstalledLayoutInAnyDirectory) {
  const TempDir prefix, elsewhere;
  const ProgramRun install = runProgram(
      KVT_CMAKE_COMMAND, {"--install", KVT_BUILD_DIR, "--prefix", prefix.path().string()},
      elsewhere.path());
  ASSERT_EQ(install.exitCode, 0) << install.standardError;

  const std::filesystem::path program = prefix.path() / KVT_INSTALLED_PROGRAM;
  for (const char* reader : {"chrometrace", "csv"}) {
    SCOPED_TRACE(reader);
    // The message about the input comes from the library, so it proves the library loaded.
    const ProgramRun run =
        runProgram(program, {"--input", "missing.log", "--reader", reader}, elsewhere.path());
    EXPECT_EQ(run.exitCode, 1);
    testing::expectGoldenRun("missing-input", run);
  }

  const std::string log = KVT_GOLDEN_LOG_DIR "/detailed-execution.log";
  const ProgramRun run =
      runProgram(program, {"--input", log, "--output", "trace.json"}, elsewhere.path());
  EXPECT_EQ(run.exitCode, 0) << run.standardError;
  const std::filesystem::path expected = goldenCaseDir / "detailed-execution";
  EXPECT_EQ(run.standardOutput,
            testing::asWrittenInTextMode(readFile(expected / "expected.trace.stdout")));
  EXPECT_EQ(readFile(elsewhere.path() / "trace.json"),
            testing::asWrittenInTextMode(readFile(expected / "expected.trace.json")));
}

} // namespace
} // namespace kvt::profiling
