// The capture behind CapturingLogger: one process-wide list, as the log facility is one too.
#include "CapturingLogger.h"

#include "plugin/Logging.h"

#include <algorithm>
#include <cstdio>
#include <mutex>

namespace kvt::profiling::testing {

namespace {

std::mutex captureMutex;
std::vector<Report> captured;

void capture(const char* format, uint32_t level, uint64_t timestampNs, va_list arguments) {
  char text[1024];
  std::vsnprintf(text, sizeof text, format, arguments);
  std::lock_guard lock(captureMutex);
  captured.push_back({level, text, timestampNs});
}

} // namespace

CapturingLogger::CapturingLogger(int32_t maxLevel, uint64_t timeBase) {
  clear();
  auto logger = std::make_shared<Logger>();
  logger->callback = capture;
  logger->maxLevel = maxLevel;
  logger->timeBase = timeBase;
  loggerRegistry().add(loggerHandle, std::move(logger));
}

CapturingLogger::~CapturingLogger() {
  loggerRegistry().remove(loggerHandle);
}

std::vector<Report> CapturingLogger::reports() const {
  std::lock_guard lock(captureMutex);
  return captured;
}

std::vector<std::string> CapturingLogger::texts(uint32_t level) const {
  std::vector<std::string> result;
  for (const Report& report : reports())
    if (report.level == level)
      result.push_back(report.text);
  return result;
}

bool CapturingLogger::contains(uint32_t level, std::string_view text) const {
  const std::vector<std::string> all = texts(level);
  return std::find(all.begin(), all.end(), text) != all.end();
}

void CapturingLogger::clear() {
  std::lock_guard lock(captureMutex);
  captured.clear();
}

} // namespace kvt::profiling::testing
