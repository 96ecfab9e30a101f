// Reads a profiling log file chunk by chunk: a 4-byte little-endian size, then that many bytes.
#pragma once

#include "ChunkBuffer.h"

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

namespace kvt::profiling {

class LogChunkReader {
public:
  enum class Status {
    chunk,      // chunk() holds the next chunk
    endOfFile,  // fewer than 4 bytes were left; trailing bytes are ignored
    oversized,  // the size prefix exceeds what a chunk may hold
    outOfMemory // no memory for the chunk
  };

  LogChunkReader() = default;
  LogChunkReader(const LogChunkReader&) = delete;
  LogChunkReader& operator=(const LogChunkReader&) = delete;
  ~LogChunkReader();

  // Opens path for reading without denying others access; false when it is missing, unreadable
  // or not a regular file.
  bool open(const std::string& path);

  // Reads the next chunk. A size prefix beyond the end of the file gives the bytes that are
  // there followed by zeros, as if the writer had stopped mid-chunk.
  Status readNextChunk();

  // The bytes of the latest chunk; valid until the next read.
  std::span<const uint8_t> chunk() const { return buffer.bytes(); }

private:
  std::FILE* file = nullptr;
  uint64_t bytesLeft = 0;
  ChunkBuffer buffer;
};

} // namespace kvt::profiling
