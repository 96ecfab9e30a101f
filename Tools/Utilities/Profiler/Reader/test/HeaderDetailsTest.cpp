// The header block: creation time in local time, clock stamps and tool versions.
#include "text/HeaderDetails.h"

#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/UtcTimeZone.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>

namespace kvt::profiling {
namespace {

class HeaderDetailsTest : public ::testing::Test {
protected:
  void SetUp() override { testing::useUtcLocalTime(); }
};

LogHeaderDetails savedHeader() {
  LogHeaderDetails header;
  header.headerSaved = true;
  header.epochTimestampUs = 1698917415000000;
  header.steadyClockTimestamp = 5123456789;
  header.timeScale = 1000;
  header.netRunVersion = "v1.0.0";
  header.backendVersion = "v2.1.0";
  return header;
}

TEST_F(HeaderDetailsTest, Formats) {
  struct Case {
    const char* what;
    void (*change)(LogHeaderDetails&);
    const char* text;
  };
  const Case cases[] = {
    {"fractional time scale and zero clocks",
     [](LogHeaderDetails& header) {
       header.timeScale = 0.5f;
       header.epochTimestampUs = 999999;
       header.steadyClockTimestamp = 0;
       header.backendVersion.clear();
     },
     "Log File Created: Thu Jan  1 00:00:00 1970\n"
     "Time Scale: 0.5\n"
     "Epoch Timestamp: 999999 Steady Clock Timestamp: 0\n"
     "Generated using: \n"
     "kvt-profile-viewer v3.17.4.231102093015_41736\n"
     "kvt-net-run        v1.0.0\n"},
    {"time scale with six significant digits",
     [](LogHeaderDetails& header) { header.timeScale = 1234.5678f; },
     "Log File Created: Thu Nov  2 09:30:15 2023\n"
     "Time Scale: 1234.57\n"
     "Epoch Timestamp: 1698917415000000 Steady Clock Timestamp: 5123456789\n"
     "Generated using: \n"
     "kvt-profile-viewer v3.17.4.231102093015_41736\n"
     "kvt-net-run        v1.0.0\n"
     "Backend            v2.1.0\n"},
#if defined(_WIN32)
    // Windows converts local times up to the year 3000 only; a failed conversion drops the
    // time line alone.
    {"a time Windows cannot convert drops its line",
     [](LogHeaderDetails& header) {
       header.epochTimestampUs = std::numeric_limits<uint64_t>::max();
     },
     "Time Scale: 1000\n"
     "Epoch Timestamp: 18446744073709551615 Steady Clock Timestamp: 5123456789\n"
     "Generated using: \n"
     "kvt-profile-viewer v3.17.4.231102093015_41736\n"
     "kvt-net-run        v1.0.0\n"
     "Backend            v2.1.0\n"},
#else
    {"a year too wide for the time text drops the whole block",
     [](LogHeaderDetails& header) {
       header.epochTimestampUs = std::numeric_limits<uint64_t>::max();
     },
     ""},
#endif
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    LogHeaderDetails header = savedHeader();
    c.change(header);
    EXPECT_EQ(formatHeaderDetails(header), c.text);
  }
}

TEST_F(HeaderDetailsTest, NoSavedHeaderIsEmptyAndReported) {
  testing::CapturingLogger logger;
  EXPECT_EQ(formatHeaderDetails(LogHeaderDetails{}), "");
  EXPECT_TRUE(logger.contains(logVerbose, "Header details unavailable."));
}

} // namespace
} // namespace kvt::profiling
