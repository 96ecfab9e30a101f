// Several readers parse on their own threads while reporting through one registered logger and
// printing to streams of their own.
#include "plugin/KvtProfileLogReader.h"
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"
#include "support/UtcTimeZone.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <sstream>
#include <thread>

namespace kvt::profiling {
namespace {

TEST(ThreadedReaders, ParseAndReportConcurrently) {
  testing::CapturingLogger logger(logVerbose);
  constexpr int threads = 4, parsesPerThread = 25;
  std::atomic<int> parsed{0};
  std::vector<std::thread> workers;
  for (int t = 0; t < threads; ++t)
    workers.emplace_back([&] {
      for (int i = 0; i < parsesPerThread; ++i) {
        KvtProfileLogReader reader(testing::fixtureLog("header-and-compose"),
                                   VisibilityLevel::keepAll);
        KvtProfileLogReader missing("/nonexistent.log", VisibilityLevel::keepAll);
        if (reader.parseLog(false) && !missing.parseLog(false) &&
            reader.headerDetails().headerSaved)
          ++parsed;
      }
    });
  for (std::thread& worker : workers)
    worker.join();
  EXPECT_EQ(parsed, threads * parsesPerThread);
  EXPECT_EQ(logger.texts(logError).size(), size_t(threads * parsesPerThread));
}

// Each reader prints to the stream it was given: two kinds of reader on several threads, each
// thread's text whole and the viewer's own, and nothing on the process's standard output.
TEST(ThreadedReaders, EachReaderPrintsToItsOwnStream) {
  testing::useUtcLocalTime();                         // as the expected texts were written
  const std::string caseName = "queue-wait-multiple"; // its parse prints a warning too
  const std::string logPath = std::string(KVT_GOLDEN_LOG_DIR) + "/" + caseName + ".log";
  const std::filesystem::path expectedDir =
      std::filesystem::path(KVT_TEST_DATA_DIR) / "golden" / caseName;
  const std::string traceExpected = testing::readFile(expectedDir / "expected.trace.stdout");
  const std::string csvExpected = testing::readFile(expectedDir / "expected.csv.stdout");
  ASSERT_FALSE(traceExpected.empty());
  ASSERT_FALSE(csvExpected.empty());

  const testing::TempDir outputDir;
  const testing::StdoutCapture standardOutput;
  constexpr int threads = 4, runsPerThread = 10;
  std::atomic<int> whole{0};
  std::vector<std::thread> workers;
  for (int t = 0; t < threads; ++t)
    workers.emplace_back([&, t] {
      const std::string outputPath = (outputDir.path() / std::to_string(t)).string();
      for (int i = 0; i < runsPerThread; ++i) {
        std::ostringstream printed;
        std::unique_ptr<KvtProfileLogReader> reader;
        if ((t + i) % 2 == 0)
          reader =
              std::make_unique<KvtProfileLogReaderChrometrace>(logPath, VisibilityLevel::keepAll);
        else
          reader = std::make_unique<KvtProfileLogReader>(logPath, VisibilityLevel::keepAll);
        reader->printTo(printed);
        const std::string& expected = (t + i) % 2 == 0 ? traceExpected : csvExpected;
        if (reader->parseLog(false) && reader->writeOutputs(outputPath) &&
            printed.str() == expected)
          ++whole;
      }
    });
  for (std::thread& worker : workers)
    worker.join();
  EXPECT_EQ(whole, threads * runsPerThread);
  EXPECT_EQ(standardOutput.text(), "");
}

} // namespace
} // namespace kvt::profiling
