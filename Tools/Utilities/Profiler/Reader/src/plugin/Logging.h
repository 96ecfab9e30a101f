// The process-wide log facility: every diagnostic of the library goes through logMessage to the
// logger a host registered under loggerHandle, or nowhere.
#pragma once

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace kvt::profiling {

// Receives a printf-style format unexpanded, with its arguments; the timestamp is nanoseconds
// since the Unix epoch minus the logger's time base.
using LoggerCallback = void (*)(const char* format, uint32_t level, uint64_t timestampNs,
                                va_list arguments);

// Severity of a report: lower is more severe.
enum LogLevel : uint32_t {
  logError = 1,   // a failed operation: corrupt chunk, unopenable file
  logVerbose = 5, // progress notes such as the end of a chunk
};

struct Logger {
  LoggerCallback callback = nullptr;
  std::atomic<int32_t> maxLevel{0};
  uint64_t timeBase = 0;
};

// Maps a handle to a shared logger; one mutex guards every lookup.
class LoggerRegistry {
public:
  LoggerRegistry();
  void add(uint64_t handle, std::shared_ptr<Logger> logger);
  void remove(uint64_t handle);
  // Empty when no logger is registered under the handle.
  std::shared_ptr<Logger> find(uint64_t handle) const;

private:
  mutable std::mutex mutex;
  std::unordered_map<uint64_t, std::shared_ptr<Logger>> loggers;
};

// The registry lives as long as the library is loaded.
LoggerRegistry& loggerRegistry();

// The handle the library reports under.
inline constexpr uint64_t loggerHandle = 0;

// Nanoseconds since the Unix epoch from the precise system clock.
uint64_t preciseWallClockNs();

// Delivers the report when a logger is registered and admits the level.
void logMessage(uint32_t level, const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    ;

} // namespace kvt::profiling
