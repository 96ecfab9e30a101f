// Temporary directories and fixture paths.
#include "TestFiles.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <sstream>

#if defined(_WIN32)
#include <process.h>
#else
#include <unistd.h>
#endif

namespace kvt::profiling::testing {

namespace {

// Memory-backed when the machine has it: tests that rewrite files thousands of times would
// otherwise wait on the disk's flushes of truncated files.
std::filesystem::path scratchRoot() {
#if defined(__linux__)
  if (!std::getenv("TMPDIR") && std::filesystem::is_directory("/dev/shm"))
    return "/dev/shm";
#endif
  return std::filesystem::temp_directory_path();
}

int processId() {
#if defined(_WIN32)
  return _getpid();
#else
  return getpid();
#endif
}

} // namespace

TempDir::TempDir() {
  static std::atomic<unsigned> counter{0};
  root =
      scratchRoot() / ("kvt-test-" + std::to_string(processId()) + "-" + std::to_string(counter++));
  std::filesystem::remove_all(root);
  std::filesystem::create_directories(root);
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(root, ignored);
}

std::string TempDir::write(const std::string& name, std::span<const uint8_t> bytes) const {
  const std::filesystem::path file = root / name;
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
  return file.string();
}

std::string TempDir::write(const std::string& name, const std::string& text) const {
  return write(name, std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
}

std::string readFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string asWrittenInTextMode(std::string text) {
#if defined(_WIN32)
  for (size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2))
    text.insert(at, 1, '\r');
#endif
  return text;
}

std::string fixtureLog(const std::string& name) {
  return std::string(KVT_FIXTURE_DIR "/") + name + ".log";
}

std::vector<std::string> fixtureAndGoldenLogs() {
  std::vector<std::string> logs;
  for (const char* dir : {KVT_FIXTURE_DIR, KVT_GOLDEN_LOG_DIR})
    for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(dir))
      if (entry.path().extension() == ".log")
        logs.push_back(entry.path().string());
  std::sort(logs.begin(), logs.end());
  return logs;
}

} // namespace kvt::profiling::testing
