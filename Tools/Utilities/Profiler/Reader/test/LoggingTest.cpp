// Delivery of reports to the registered logger: level filter, time base, threads.
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;

TEST(Logging, DeliversReportsUpToTheLoggersLevel) {
  struct Case {
    const char* what;
    int32_t maxLevel;
    uint32_t level;
    bool delivered;
  };
  const Case cases[] = {
      {"error to an error logger", 1, 1, true},    {"verbose to an error logger", 1, 5, false},
      {"verbose to a verbose logger", 5, 5, true}, {"error to a silent logger", 0, 1, false},
      {"level 3 to a level 3 logger", 3, 3, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CapturingLogger logger(c.maxLevel);
    logMessage(c.level, "value %d of %s", 42, "answer");
    EXPECT_EQ(logger.contains(c.level, "value 42 of answer"), c.delivered);
  }
}

TEST(Logging, DropsReportsWithoutALogger) {
  { CapturingLogger logger; }
  logMessage(logError, "nobody listens");
  CapturingLogger logger;
  EXPECT_TRUE(logger.reports().empty());
}

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
