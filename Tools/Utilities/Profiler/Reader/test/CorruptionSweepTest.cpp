// Every fixture log cut at each length and flipped at a stride: the readers either refuse it or
// produce their outputs; under the sanitizers this finds what a corrupt log could break.
#include "plugin/KvtProfileLogReader.h"
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

TEST(CorruptionSweep, CutAndFlippedFixturesNeverBreakTheReaders) {
  const std::vector<std::string> logs = testing::fixtureAndGoldenLogs();
  ASSERT_FALSE(logs.empty());
  for (const std::string& path : logs) {
    SCOPED_TRACE(path);
    const std::string log = testing::readFile(path);
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
}

} // namespace
} // namespace kvt::profiling
