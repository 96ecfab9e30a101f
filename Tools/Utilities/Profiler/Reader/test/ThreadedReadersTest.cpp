// Several readers parse on their own threads while reporting through one registered logger.
#include "plugin/KvtProfileLogReader.h"
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <atomic>
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

} // namespace
} // namespace kvt::profiling
