// A progress line for the reading of the log, on a terminal. The reader library reports nothing
// while it parses, so the viewer watches the file position the system keeps for the library's
// open file of the log (on Linux in /proc/self/fdinfo); elsewhere nothing is shown.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <thread>

namespace kvt::profiling {

// How far this process has read file: the position of its first open descriptor of file, or
// nothing when none is open or the system does not tell.
std::optional<uint64_t> findReadPosition(const std::filesystem::path& file);

class ReadProgress {
public:
  // Watches the reading of log from a thread of its own when show is set (the standard error is
  // a terminal) and log is a regular file; otherwise does nothing.
  ReadProgress(const std::filesystem::path& log, bool show);
  ReadProgress(const ReadProgress&) = delete;
  ReadProgress& operator=(const ReadProgress&) = delete;
  // Stops watching and wipes the line, if one was drawn.
  ~ReadProgress();

private:
  void watch(std::filesystem::path log, uint64_t logBytes);

  std::mutex mutex;
  std::condition_variable stopRequested;
  bool stopping = false;
  std::thread watcher;
};

} // namespace kvt::profiling
