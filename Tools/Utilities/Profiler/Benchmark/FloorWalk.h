// The floor of reading a log: every chunk read and verified as the reader does it, and every
// field of every message and event read once, with nothing built. No reader can do less.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kvt::profiling {

struct LogWalk {
  uint64_t chunks = 0;
  uint64_t messages = 0;
  uint64_t events = 0; // at every depth
  uint64_t largestChunkBytes = 0;
  uint64_t fieldSum = 0; // of every field read, so that none of the reads can be left out
};

// Walks the log at path; none when it cannot be opened or a chunk is invalid.
std::optional<LogWalk> walkLog(const std::string& path);

} // namespace kvt::profiling
