// The whole pipeline on every case folder of test/golden: the log compiled from the folder's
// input.json (and input-2.json, ...) is parsed and written by the trace reader and, when the
// folder holds expected.csv, by the base reader too; every output is compared byte for byte with
// the expected files beside the input. KVT_UPDATE_GOLDEN=1 rewrites the expected files instead;
// review their diff before committing them.
#include "plugin/KvtProfileLogReader.h"
#include "support/CapturingLogger.h"
#include "support/GoldenCases.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"
#include "support/UtcTimeZone.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace kvt::profiling {
namespace {

namespace fs = std::filesystem;

using testing::CapturingLogger;
using testing::readFile;
using testing::StdoutCapture;
using testing::TempDir;

const fs::path goldenLogDir = KVT_GOLDEN_LOG_DIR;

using ReaderFactory = std::function<std::unique_ptr<KvtProfileLogReader>(const std::string&)>;

// One reader's outputs and the expected files they are compared with.
struct ReaderVariant {
  const char* outputName; // the output file, written into a temporary directory
  const char* fileExpected;
  const char* stdoutExpected;
  const char* resultExpected;
  ReaderFactory makeReader;
};

const ReaderVariant traceReader{"trace.json", "expected.trace.json", "expected.trace.stdout",
                                "expected.trace.result", [](const std::string& logPath) {
                                  return std::make_unique<KvtProfileLogReaderChrometrace>(
                                      logPath, VisibilityLevel::keepAll);
                                }};

const ReaderVariant csvReader{"events.csv", "expected.csv", "expected.csv.stdout",
                              "expected.csv.result", [](const std::string& logPath) {
                                return std::make_unique<KvtProfileLogReader>(
                                    logPath, VisibilityLevel::keepAll);
                              }};

struct ReaderOutputs {
  std::string file; // empty when the reader wrote none
  std::string stdoutText;
  std::string result; // the results of parseLog and writeOutputs, then every report, one a line
};

ReaderOutputs runReader(const ReaderVariant& variant, const std::string& caseName) {
  const TempDir outputDir;
  const std::string logPath = (goldenLogDir / (caseName + ".log")).string();
  const fs::path outputPath = outputDir.path() / variant.outputName;

  CapturingLogger logger;
  ReaderOutputs outputs;
  StdoutCapture captured;
  std::unique_ptr<KvtProfileLogReader> reader = variant.makeReader(logPath);
  const bool parsed = reader->parseLog(false);
  const bool written = reader->writeOutputs(outputPath.string());
  outputs.stdoutText = captured.text();
  outputs.result = std::string("parseLog: ") + (parsed ? "true" : "false") +
                   "\nwriteOutputs: " + (written ? "true" : "false") + "\n";
  for (const testing::Report& report : logger.reports()) {
    std::string text =
        testing::withPlaceholders(report.text, outputDir.path().string(), "<output-dir>");
    text = testing::withPlaceholders(text, goldenLogDir.string(), "<log-dir>");
    outputs.result += "level " + std::to_string(report.level) + ": " + text + "\n";
  }
  outputs.file = readFile(outputPath);
  // Writing again gives the same file: what the parse streamed aside is read back, not used up.
  if (written) {
    EXPECT_TRUE(reader->writeOutputs(outputPath.string() + ".again"));
    EXPECT_EQ(readFile(outputPath.string() + ".again"), outputs.file);
  }
  return outputs;
}

void compareOrUpdate(const fs::path& caseDir, const ReaderVariant& variant,
                     const ReaderOutputs& outputs) {
  testing::expectGoldenFile(caseDir / variant.fileExpected, outputs.file, true);
  testing::expectGoldenFile(caseDir / variant.stdoutExpected, outputs.stdoutText);
  testing::expectGoldenFile(caseDir / variant.resultExpected, outputs.result);
}

class GoldenTest : public ::testing::TestWithParam<std::string> {
protected:
  void SetUp() override {
    // The header's creation time is printed in local time.
    testing::useUtcLocalTime();
  }
};

TEST_P(GoldenTest, MatchesExpectedOutputs) {
  const fs::path caseDir = testing::goldenCaseDir / GetParam();
  {
    SCOPED_TRACE("trace reader");
    compareOrUpdate(caseDir, traceReader, runReader(traceReader, GetParam()));
  }
  // The base reader's outputs are checked where the case asks for them.
  if (fs::exists(caseDir / csvReader.fileExpected)) {
    SCOPED_TRACE("base reader");
    compareOrUpdate(caseDir, csvReader, runReader(csvReader, GetParam()));
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, GoldenTest, ::testing::ValuesIn(testing::goldenCaseNames()),
                         testing::goldenCaseTestName);

} // namespace
} // namespace kvt::profiling
