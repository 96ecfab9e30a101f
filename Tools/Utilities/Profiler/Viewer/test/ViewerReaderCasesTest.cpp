// The viewer on every golden case of the reader tests: its standard output and output file must
// be exactly the reader's own, and its exit code must follow the reader's results.
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

const fs::path caseLogDir = KVT_GOLDEN_LOG_DIR;

// One way of running the viewer on a case, and the expected files it is compared with.
struct ViewerVariant {
  const char* what;
  const char* reader;
  const char* outputName; // passed as --output; null to leave it out
  const char* fileExpected;
  const char* stdoutExpected;
  const char* resultExpected;
};

const ViewerVariant variants[] = {
    {"trace reader", "chrometrace", "trace.json", "expected.trace.json", "expected.trace.stdout",
     "expected.trace.result"},
    {"csv reader", "csv", "events.csv", "expected.csv", "expected.csv.stdout",
     "expected.csv.result"},
    // Without a file the base reader still prints its whole summary.
    {"csv reader without --output", "csv", nullptr, "expected.csv", "expected.csv.stdout",
     "expected.csv.result"},
};

class ViewerReaderCases : public ::testing::TestWithParam<std::string> {};

TEST_P(ViewerReaderCases, PrintsAndWritesWhatTheReaderDoes) {
  const fs::path caseDir = testing::goldenCaseDir / GetParam();
  const std::string logPath = (caseLogDir / (GetParam() + ".log")).string();
  for (const ViewerVariant& variant : variants) {
    SCOPED_TRACE(variant.what);
    // A case checks the base reader only when it holds the base reader's expected files.
    if (!fs::exists(caseDir / variant.fileExpected))
      continue;
    const std::string result = readFile(caseDir / variant.resultExpected);
    ASSERT_TRUE(result.starts_with("parseLog: ")) << "no results in " << variant.resultExpected;
    const bool parsed = result.starts_with("parseLog: true\n");
    const bool written = result.find("\nwriteOutputs: true\n") != std::string::npos;

    const TempDir workingDir;
    std::vector<std::string> arguments{"--input", logPath, "--reader", variant.reader};
    if (variant.outputName)
      arguments.insert(arguments.end(), {"--output", variant.outputName});
    const ProgramRun run = runProgram(KVT_VIEWER_PROGRAM, arguments, workingDir.path());
    if (!parsed) {
      // The viewer stops after a failed parse, so the reader's outputs are never asked for.
      EXPECT_EQ(run.exitCode, 1);
      EXPECT_EQ(run.standardOutput, "");
      continue;
    }
    EXPECT_EQ(run.exitCode, written ? 0 : 1) << run.standardError;
    EXPECT_EQ(run.standardOutput,
              testing::asWrittenInTextMode(readFile(caseDir / variant.stdoutExpected)));
    if (variant.outputName) {
      EXPECT_EQ(readFile(workingDir.path() / variant.outputName),
                testing::asWrittenInTextMode(readFile(caseDir / variant.fileExpected)));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, ViewerReaderCases, ::testing::ValuesIn(testing::goldenCaseNames()),
                         testing::goldenCaseTestName);

} // namespace
} // namespace kvt::profiling
