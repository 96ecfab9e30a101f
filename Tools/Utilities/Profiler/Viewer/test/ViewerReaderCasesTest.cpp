// The viewer on every golden case of the reader tests: its standard output and trace file must be
// exactly the library's own, and its exit code must follow the library's results.
#include "ProgramRun.h"
#include "support/GoldenCases.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

namespace fs = std::filesystem;

using testing::ProgramRun;
using testing::readFile;
using testing::runProgram;
using testing::TempDir;

const fs::path caseLogDir = KVT_READER_GOLDEN_LOG_DIR;

class ViewerReaderCases : public ::testing::TestWithParam<std::string> {};

TEST_P(ViewerReaderCases, PrintsAndWritesWhatTheTraceReaderDoes) {
  const fs::path expected = testing::goldenCaseDir / GetParam();
  const std::string result = readFile(expected / "expected.trace.result");
  ASSERT_TRUE(result.starts_with("parseLog: ")) << "no results in " << expected;
  const bool parsed = result.starts_with("parseLog: true\n");
  const bool written = result.find("\nwriteOutputs: true\n") != std::string::npos;

  const TempDir workingDir;
  const std::string logPath = (caseLogDir / (GetParam() + ".log")).string();
  const ProgramRun run = runProgram(
      KVT_VIEWER_PROGRAM, {"--input", logPath, "--output", "trace.json"}, workingDir.path());
  if (!parsed) {
    // The viewer stops after a failed parse, so the reader's outputs are never asked for.
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardOutput, "");
    return;
  }
  EXPECT_EQ(run.exitCode, written ? 0 : 1) << run.standardError;
  EXPECT_EQ(run.standardOutput, readFile(expected / "expected.trace.stdout"));
  EXPECT_EQ(readFile(workingDir.path() / "trace.json"), readFile(expected / "expected.trace.json"));
}

INSTANTIATE_TEST_SUITE_P(Cases, ViewerReaderCases, ::testing::ValuesIn(testing::goldenCaseNames()),
                         testing::goldenCaseTestName);

} // namespace
} // namespace kvt::profiling
