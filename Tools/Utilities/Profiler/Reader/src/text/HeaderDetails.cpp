// The saved log header as a short block of text.
#include "HeaderDetails.h"

#include "plugin/Logging.h"

#include <cstdio>
#include <ctime>
#include <sstream>

namespace kvt::profiling {

namespace {

constexpr uint64_t microsecondsPerSecond = 1000000;
constexpr size_t asctimeBytes = 26; // the C library's fixed "asctime" buffer

// The platform's reentrant form of localtime; false on failure.
bool toLocalTime(std::time_t seconds, std::tm& local) {
#if defined(_WIN32)
  return localtime_s(&local, &seconds) == 0;
#else
  return localtime_r(&seconds, &local) != nullptr;
#endif
}

// The C standard's "asctime" layout, written out here because Windows' C library pads the day
// with a zero where the standard has a blank. False when the text does not fit the buffer (a
// year of five digits or more).
bool formatAsctime(const std::tm& local, char (&text)[asctimeBytes]) {
  static constexpr const char* weekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const int length = std::snprintf(text, asctimeBytes, "%.3s %.3s%3d %.2d:%.2d:%.2d %d\n",
                                   weekdays[local.tm_wday], months[local.tm_mon], local.tm_mday,
                                   local.tm_hour, local.tm_min, local.tm_sec, 1900 + local.tm_year);
  return length > 0 && length < int(asctimeBytes);
}

} // namespace

std::string formatHeaderDetails(const LogHeaderDetails& header) {
  if (!header.headerSaved) {
    logMessage(logVerbose, "Header details unavailable.");
    return {};
  }

  std::ostringstream text;
  const auto seconds = std::time_t(header.epochTimestampUs / microsecondsPerSecond);
  std::tm local{};
  if (toLocalTime(seconds, local)) {
    // A year too wide for the fixed form fails here; the whole block is then dropped.
    char created[asctimeBytes];
    if (!formatAsctime(local, created))
      return {};
    text << "Log File Created: " << created; // ends with its own newline
  }
  text << "Time Scale: " << header.timeScale << "\n";
  text << "Epoch Timestamp: " << header.epochTimestampUs
       << " Steady Clock Timestamp: " << header.steadyClockTimestamp << "\n";
  text << "Generated using: \n";
  text << "kvt-profile-viewer " << readerVersion << "\n";
  if (!header.netRunVersion.empty())
    text << "kvt-net-run        " << header.netRunVersion << "\n";
  if (!header.backendVersion.empty())
    text << "Backend            " << header.backendVersion << "\n";
  return text.str();
}

} // namespace kvt::profiling
