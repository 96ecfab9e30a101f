// Writes a log file chunk by chunk, each buffer after its 4-byte little-endian size, or any other
// file that must appear only once complete.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

namespace kvt::profiling {

// A log that is a regular file, or does not exist yet, is written to a temporary file next to it,
// which takes its place only when every write succeeded: a failed or abandoned log leaves no file
// behind and an older log untouched. Anything else (a device such as /dev/null, a pipe, a
// symbolic link) is written in place and never removed.
class ChunkFileWriter {
public:
  // Opens the file to write; see isOpen.
  explicit ChunkFileWriter(const std::string& path);
  ChunkFileWriter(const ChunkFileWriter&) = delete;
  ChunkFileWriter& operator=(const ChunkFileWriter&) = delete;
  // Removes the temporary file unless close succeeded; closes anything else.
  ~ChunkFileWriter();

  bool isOpen() const { return file != nullptr; }

  // Appends one chunk; false once any write has failed. The buffer must be smaller than 4 GiB.
  bool writeChunk(std::span<const uint8_t> buffer);
  // Appends bytes as they are, for files of text; false once any write has failed.
  bool writeBytes(std::span<const uint8_t> bytes);

  // Flushes the chunks and puts a temporary file in the log's place; false when anything failed.
  bool close();

  // Bytes handed to the file so far, size prefixes included.
  uint64_t bytesWritten() const { return writtenBytes; }

private:
  void discard();

  std::string path;
  std::string partialPath; // empty when the log is written in place
  std::FILE* file = nullptr;
  bool failed = false;
  uint64_t writtenBytes = 0;
};

} // namespace kvt::profiling
