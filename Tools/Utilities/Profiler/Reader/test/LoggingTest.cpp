// Delivery of reports to the registered logger: time base and threads; the viewer's golden
// outputs pin the level filter.
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
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
  // Unix time, whatever the platform's own clock counts from (Windows': 1601).
  const auto unixNs = uint64_t(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                   std::chrono::system_clock::now().time_since_epoch())
                                   .count());
  EXPECT_LT(std::max(before, unixNs) - std::min(before, unixNs), 60000000000ull); // a minute
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
