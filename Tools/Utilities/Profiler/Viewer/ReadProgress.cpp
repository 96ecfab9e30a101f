// Polling the log's file position from a second thread while the reader library parses.
#include "ReadProgress.h"

#include "ProgressLine.h"

#include <fstream>
#include <iostream>
#include <string>

namespace kvt::profiling {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds pollInterval{100};       // between two looks at the position
constexpr const char* openFiles = "/proc/self/fd";           // a link per descriptor, to its file
constexpr const char* openFileDetails = "/proc/self/fdinfo"; // "pos:\t<offset>" among other lines

bool isOpenAs(const fs::path& descriptor, const fs::path& file) {
  std::error_code error;
  return fs::read_symlink(descriptor, error) == file && !error;
}

std::optional<uint64_t> readPosition(const std::string& descriptor) {
  std::ifstream details(fs::path(openFileDetails) / descriptor);
  std::string key;
  uint64_t value = 0;
  while (details >> key >> value)
    if (key == "pos:")
      return value;
  return std::nullopt;
}

} // namespace

std::optional<uint64_t> findReadPosition(const fs::path& file) {
  std::error_code error;
  const fs::path target = fs::canonical(file, error);
  if (error)
    return std::nullopt;
  for (const fs::directory_entry& descriptor : fs::directory_iterator(openFiles, error))
    if (isOpenAs(descriptor.path(), target))
      return readPosition(descriptor.path().filename().string());
  return std::nullopt;
}

ReadProgress::ReadProgress(const fs::path& log, bool show) {
  std::error_code error;
  const uint64_t logBytes = fs::is_regular_file(log, error) ? fs::file_size(log, error) : 0;
  if (show && logBytes && !error)
    watcher = std::thread(&ReadProgress::watch, this, log, logBytes);
}

ReadProgress::~ReadProgress() {
  if (!watcher.joinable())
    return;
  {
    const std::lock_guard lock(mutex);
    stopping = true;
  }
  stopRequested.notify_one();
  watcher.join();
}

void ReadProgress::watch(fs::path log, uint64_t logBytes) {
  ProgressLine line(std::cerr, true, "reading the log");
  std::unique_lock lock(mutex);
  while (!stopRequested.wait_for(lock, pollInterval, [this] { return stopping; }))
    if (const std::optional<uint64_t> position = findReadPosition(log))
      line.update({*position, logBytes, *position, logBytes});
}

} // namespace kvt::profiling
