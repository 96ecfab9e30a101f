// Every fixture log cut at each length and flipped at a stride: the readers either refuse it or
// produce their outputs; under the sanitizers this finds what a corrupt log could break.
#include "plugin/KvtProfileLogReader.h"
#include "support/GoldenCases.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kvt::profiling {
namespace {

constexpr size_t flipStride = 3; // bytes between flipped positions

void parseAndWrite(KvtProfileLogReader& reader, const std::string& outputPath) {
  if (reader.parseLog(false))
    reader.writeOutputs(outputPath);
}

// Runs both readers over the bytes; what they print is discarded.
void runReaders(const testing::TempDir& dir, const std::string& bytes) {
  const std::string logPath = dir.write("variant.log", bytes);
  const testing::StdoutCapture discarded;
  KvtProfileLogReaderChrometrace traceReader(logPath, VisibilityLevel::keepAll);
  parseAndWrite(traceReader, (dir.path() / "trace.json").string());
  KvtProfileLogReader csvReader(logPath, VisibilityLevel::keepAll);
  parseAndWrite(csvReader, (dir.path() / "events.csv").string());
}

// One case a log, so that the sweeps share the cores: under the sanitizers they take minutes.
class CorruptionSweep : public ::testing::TestWithParam<std::string> {};

TEST_P(CorruptionSweep, CutAndFlippedNeverBreakTheReaders) {
  const std::string log = testing::readFile(GetParam());
  ASSERT_FALSE(log.empty());
  testing::TempDir dir;
  for (size_t length = 0; length < log.size(); ++length)
    runReaders(dir, log.substr(0, length));
  for (size_t at = 0; at < log.size(); at += flipStride)
    for (const char flip : {'\x00', '\xFF', '\x80'}) {
      std::string variant = log;
      variant[at] = variant[at] == flip ? char(~flip) : flip;
      runReaders(dir, variant);
    }
}

// "golden_step_keys" for golden/step-keys.log.
std::string sweepName(const ::testing::TestParamInfo<std::string>& info) {
  const std::filesystem::path path = info.param;
  return testing::goldenCaseTestName(
      {path.parent_path().filename().string() + '_' + path.stem().string(), info.index});
}

INSTANTIATE_TEST_SUITE_P(Logs, CorruptionSweep,
                         ::testing::ValuesIn(testing::fixtureAndGoldenLogs()), sweepName);

} // namespace
} // namespace kvt::profiling
