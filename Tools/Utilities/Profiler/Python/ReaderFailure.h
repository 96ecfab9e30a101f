// The reader's own messages, caught while a function of the module reads a log, so that a refused
// log raises kvtprofile.LogError carrying them.
#pragma once

#include "log/ParseDriver.h"

#include <pybind11/pybind11.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

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

// Throws LogFailure unless read stands (see LogReadResult::stands): the first line names the
// log (role, "base log", first in a comparison) and its precise fault, the calling thread's
// messages from the reader follow, one a line.
void requireStandingRead(const LogReadResult& read, bool partial, std::string_view role = {});

// For a frame's attrs: {"chunks_read", "bytes_read", "reason"} of a partial read, with a
// RuntimeWarning that says what was dropped; None for a whole read. Needs the GIL.
pybind11::object describePartial(const std::optional<LogReadResult>& partial);

// Raises FileNotFoundError when nothing is at path; the reader would only call it invalid.
void requireExistingFile(const std::filesystem::path& path);

// Raises ValueError for a KVT_PROFILER_THREADS the log tool would refuse, before a log is read.
void requireReadThreads();

} // namespace kvt::profiling
