// What is wrong with a file that was to be read as a log, and where: the one description every
// tool prints and the Python module raises.
#pragma once

#include <cstdint>
#include <string>

namespace kvt::profiling {

enum class LogFaultKind {
  cannotOpen,         // the system refused to open the path (systemReason says why)
  notRegularFile,     // a directory, a device, a pipe (pathType says which)
  emptyFile,          // 0 bytes: no chunk at all
  textFile,           // the first bytes are text, so no size prefix
  prefixCutShort,     // 1 to 3 bytes after the last chunk, too few for a size prefix
  cutShort,           // the size prefix claims more bytes than the file holds
  badSizePrefix,      // the size prefix exceeds the largest buffer a chunk may hold
  outOfMemory,        // no memory for the chunk's claimed size
  badRoot,            // too few bytes for a buffer, or a root offset outside it
  failedVerification, // the buffer fails verification
};

struct LogFault {
  LogFaultKind kind = LogFaultKind::failedVerification;
  std::string path;
  uint64_t chunk = 0;        // index of the bad chunk, from 0
  uint64_t offset = 0;       // of its size prefix in the file
  uint64_t claimedBytes = 0; // what its size prefix says
  uint64_t bytesLeft = 0;    // what the file holds after its size prefix (or at offset, for
                             // prefixCutShort)
  std::string pathType;      // notRegularFile: "a directory", "a pipe", ...
  std::string systemReason;  // cannotOpen: the system's text, e.g. "No such file or directory"
};

// A fault of kind at path, before any chunk.
LogFault makeLogFault(LogFaultKind kind, const std::string& path);

// The fault without its path, one line and no line feed. Examples:
//   chunk 15 at offset 4809716 is cut short: its size prefix says 331528 bytes, the file holds
//   190280 more
//   chunk 1 at offset 208 (300 bytes) fails verification
//   is a directory, not a log file
std::string describeLogFaultWithoutPath(const LogFault& fault);

// "PATH: " and the description, or "PATH " before the kinds about the path itself
// ("run.json is a text file, not a log: ...").
std::string describeLogFault(const LogFault& fault);

// True for the faults of a path that is no log at all, where no chunk could be read.
bool isNotALog(const LogFault& fault);

// The fault of a file's first chunk as textFile when the file starts with text (printable ASCII,
// tabs, line ends or UTF-8: a log's first size prefix has a zero byte below 16 MiB); any other
// fault as it is.
LogFault recognizeText(LogFault fault);

} // namespace kvt::profiling
