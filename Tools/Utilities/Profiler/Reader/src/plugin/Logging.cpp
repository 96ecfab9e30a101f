// The registry and the delivery of reports to the registered logger.
#include "Logging.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <time.h>
#endif

namespace kvt::profiling {

namespace {
constexpr size_t initialBuckets = 8;
} // namespace

LoggerRegistry::LoggerRegistry() {
  loggers.max_load_factor(1.0f);
  loggers.rehash(initialBuckets);
}

void LoggerRegistry::add(uint64_t handle, std::shared_ptr<Logger> logger) {
  std::lock_guard lock(mutex);
  loggers[handle] = std::move(logger);
}

void LoggerRegistry::remove(uint64_t handle) {
  std::lock_guard lock(mutex);
  loggers.erase(handle);
}

std::shared_ptr<Logger> LoggerRegistry::find(uint64_t handle) const {
  std::lock_guard lock(mutex);
  auto it = loggers.find(handle);
  return it == loggers.end() ? nullptr : it->second;
}

LoggerRegistry& loggerRegistry() {
  static LoggerRegistry registry;
  return registry;
}

uint64_t preciseWallClockNs() {
#if defined(_WIN32)
  // 100-nanosecond ticks since 1601-01-01; the offset moves them to the Unix epoch.
  constexpr uint64_t ticksFrom1601To1970 = 116444736000000000ull;
  FILETIME now;
  GetSystemTimePreciseAsFileTime(&now);
  const uint64_t ticks = (uint64_t(now.dwHighDateTime) << 32) | now.dwLowDateTime;
  return (ticks - ticksFrom1601To1970) * 100;
#else
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return uint64_t(now.tv_sec) * 1000000000ull + uint64_t(now.tv_nsec);
#endif
}

void logMessage(uint32_t level, const char* format, ...) {
  const std::shared_ptr<Logger> logger = loggerRegistry().find(loggerHandle);
  if (!logger || !logger->callback ||
      int64_t(level) > int64_t(logger->maxLevel.load(std::memory_order_relaxed)))
    return;
  const uint64_t timestampNs = preciseWallClockNs() - logger->timeBase;
  va_list arguments;
  va_start(arguments, format);
  logger->callback(format, level, timestampNs, arguments);
  va_end(arguments);
}

} // namespace kvt::profiling
