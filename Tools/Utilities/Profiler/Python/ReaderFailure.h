// The reader's own messages, caught while a function of the module reads a log, so that a refused
// log raises kvtprofile.LogError carrying them.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace kvt::profiling {

// Thrown by the module's functions; Python sees kvtprofile.LogError with the message.
struct LogFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Registers, for the life of the process, a logger that keeps the reader's error reports of each
// thread for that thread.
void catchReaderMessages();

// Forgets the calling thread's messages, before a read.
void clearReaderMessages();

// Throws LogFailure with the calling thread's messages, one a line, or with fallback when the
// reader reported nothing.
[[noreturn]] void throwReaderFailure(const std::string& fallback);

// Raises FileNotFoundError when nothing is at path; the reader would only call it invalid.
void requireExistingFile(const std::filesystem::path& path);

} // namespace kvt::profiling
