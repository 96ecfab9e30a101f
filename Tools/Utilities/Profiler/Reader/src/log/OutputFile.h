// The one way the tools write a file: whole or not at all, through symbolic links, in place on
// devices and pipes, with the system's reason when it fails.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

namespace kvt::profiling {

// Where path leads, the file is written: a symbolic link is followed to its target (the link
// stays). A target that is a regular file, or nothing yet, is written to TARGET.partial beside it
// and renamed over it by commit, so a reader sees the old file or the new one, never half of
// it; a failed or abandoned file leaves nothing behind and the old one untouched. Any other
// target (a device such as /dev/null, a pipe, /dev/stdout) is written in place.
class OutputFile {
public:
  // Opens the file; on failure isOpen() is false and failure() says why.
  explicit OutputFile(const std::string& path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  // Discards the file unless commit succeeded.
  ~OutputFile();

  bool isOpen() const { return file != nullptr; }

  // Appends bytes; false once any write has failed.
  bool write(std::span<const uint8_t> bytes);
  bool write(std::string_view text);

  // Flushes and puts the file in place; false, with failure() set and nothing left behind, when
  // anything failed.
  bool commit();

  // Why the file cannot be written, as the system says it ("No such file or directory", "No
  // space left on device"); empty while all is well.
  const std::string& failure() const { return reason; }

  // Bytes handed to the file so far.
  uint64_t bytesWritten() const { return writtenBytes; }

private:
  void fail();
  void discard();

  std::string target;
  std::string partialPath; // empty when the target is written in place
  std::FILE* file = nullptr;
  std::string reason;
  uint64_t writtenBytes = 0;
};

// Writes bytes as the whole file at path; false with the system's reason in failure.
bool writeWholeFile(const std::string& path, std::string_view bytes, std::string& failure);

} // namespace kvt::profiling
