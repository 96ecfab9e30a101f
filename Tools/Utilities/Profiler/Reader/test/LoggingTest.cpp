// Delivery of reports to the registered logger: time base and threads; the viewer's golden
// outputs pin the level filter.
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"

#include <gtest/gtest.h>

#include <thread>

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;

TEST(Logging, SubtractsTheTimeBaseFromWallClockNanoseconds) {
  const uint64_t before = preciseWallClockNs();
  const uint64_t timeBase = before - 1000000000ull;
  CapturingLogger logger(5, timeBase);
  logMessage(logError, "stamped");
  const uint64_t after = preciseWallClockNs();
  ASSERT_EQ(logger.reports().size(), 1u);
  EXPECT_GE(logger.reports()[0].timestampNs, before - timeBase);
  EXPECT_LE(logger.reports()[0].timestampNs, after - timeBase);
  EXPECT_GT(before, 1600000000ull * 1000000000ull); // after 2020 in Unix time
}

TEST(Logging, ThreadsReportWhileTheLoggerIsReplaced) {
  CapturingLogger logger;
  constexpr int threads = 4, reportsPerThread = 2000;
  std::vector<std::thread> reporters;
  for (int t = 0; t < threads; ++t)
    reporters.emplace_back([] {
      for (int i = 0; i < reportsPerThread; ++i)
        logMessage(logError, "report %d", i);
    });
  std::thread replacer([] {
    for (int i = 0; i < 200; ++i) {
      auto replacement = loggerRegistry().find(loggerHandle);
      loggerRegistry().add(loggerHandle, replacement);
    }
  });
  for (std::thread& reporter : reporters)
    reporter.join();
  replacer.join();
  EXPECT_EQ(logger.reports().size(), size_t(threads * reportsPerThread));
}

} // namespace
} // namespace kvt::profiling
