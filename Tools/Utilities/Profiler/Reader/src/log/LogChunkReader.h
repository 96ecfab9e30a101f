// Reads a profiling log file chunk by chunk: a 4-byte little-endian size, then that many bytes.
#pragma once

#include "ChunkBuffer.h"
#include "LogFault.h"

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

namespace kvt::profiling {

// Where a chunk lies in its file, enough to say what is wrong with it.
struct ChunkPlace {
  uint64_t index = 0;            // counted from 0
  uint64_t offset = 0;           // of its size prefix
  uint64_t claimedBytes = 0;     // its size prefix
  uint64_t bytesAfterPrefix = 0; // what the file held after its size prefix; at the end of the
                                 // file, the bytes after the last whole chunk

  // Whether the size prefix claims more bytes than the file holds after it.
  bool cutShort() const { return claimedBytes > bytesAfterPrefix; }
};

// The chunk at place in the file at path described as a fault of kind.
LogFault describeChunkAt(const std::string& path, const ChunkPlace& place, LogFaultKind kind);

class LogChunkReader {
public:
  enum class Status {
    chunk,      // chunk() holds the next chunk
    endOfFile,  // fewer than 4 bytes were left; trailing bytes are ignored
    oversized,  // the size prefix exceeds what a chunk may hold
    cutShort,   // only when asked for whole chunks: the file ends before the chunk does
    outOfMemory // no memory for the chunk
  };

  LogChunkReader() = default;
  LogChunkReader(const LogChunkReader&) = delete;
  LogChunkReader& operator=(const LogChunkReader&) = delete;
  ~LogChunkReader();

  // Opens path for reading without denying others access; false when it is missing, unreadable
  // or not a regular file, with openFailure() saying which.
  bool open(const std::string& path);
  // Why open failed: cannotOpen with the system's reason, or notRegularFile.
  const LogFault& openFailure() const { return failure; }

  // Reads the next chunk. A size prefix beyond the end of the file gives the bytes that are
  // there followed by zeros, as if the writer had stopped mid-chunk, unless wholeOnly: then
  // such a chunk is left unread and the status is cutShort.
  Status readNextChunk(bool wholeOnly = false);

  // The bytes of the latest chunk; valid until the next read.
  std::span<const uint8_t> chunk() const { return buffer.bytes(); }
  // Hands the latest chunk's memory to other and takes other's in its place, for reuse: a
  // chunk can outlive the next read without being copied.
  void exchangeBuffer(ChunkBuffer& other) { swap(buffer, other); }

  // Where the latest chunk lies, or the bytes after the last one at the end of the file.
  const ChunkPlace& place() const { return latest; }

  // The latest chunk (or the bytes after the last one, at the end of the file) described as a
  // fault of kind: its index, offset, claimed size and what the file holds after its prefix.
  LogFault describeChunk(LogFaultKind kind) const { return describeChunkAt(path, latest, kind); }

private:
  std::FILE* file = nullptr;
  std::string path;
  LogFault failure;
  uint64_t bytesLeft = 0;
  ChunkPlace latest;
  uint64_t nextOffset = 0; // of the size prefix after the latest chunk
  bool started = false;
  ChunkBuffer buffer;
};

} // namespace kvt::profiling
