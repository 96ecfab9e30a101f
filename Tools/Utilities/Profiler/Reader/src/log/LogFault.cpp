// One wording for every tool, so a log refused by stats reads as dump describes it.
#include "LogFault.h"

#include "FlatBufferReaderUtil.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace kvt::profiling {

namespace {

constexpr size_t textProbeBytes = 64; // a file whose first bytes are all text is no log

// True when the file starts with text: printable ASCII, tabs and line ends, or UTF-8. A log's
// first size prefix holds a zero byte unless its chunk exceeds 16 MiB.
bool startsWithText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  char bytes[textProbeBytes];
  file.read(bytes, sizeof bytes);
  const auto count = size_t(file.gcount());
  return count >= 4 && std::all_of(bytes, bytes + count, [](char c) {
           const auto byte = uint8_t(c);
           return byte >= 0x20 || byte == '\t' || byte == '\n' || byte == '\r';
         });
}

} // namespace

LogFault makeLogFault(LogFaultKind kind, const std::string& path) {
  LogFault fault;
  fault.kind = kind;
  fault.path = path;
  return fault;
}

std::string describeLogFaultWithoutPath(const LogFault& fault) {
  std::ostringstream text;
  const auto chunk = [&]() -> std::ostream& {
    return text << "chunk " << fault.chunk << " at offset " << fault.offset << ' ';
  };
  switch (fault.kind) {
  case LogFaultKind::cannotOpen:
    text << "cannot be opened: " << fault.systemReason;
    break;
  case LogFaultKind::notRegularFile:
    text << "is " << fault.pathType << ", not a log file";
    break;
  case LogFaultKind::emptyFile:
    text << "is an empty file (0 bytes), not a log";
    break;
  case LogFaultKind::textFile:
    text << "is a text file, not a log: a log starts with a binary size prefix";
    break;
  case LogFaultKind::prefixCutShort:
    chunk() << "is cut short: " << fault.bytesLeft << " bytes, too few for a size prefix";
    break;
  case LogFaultKind::cutShort:
    chunk() << "is cut short: its size prefix says " << fault.claimedBytes
            << " bytes, the file holds " << fault.bytesLeft << " more";
    break;
  case LogFaultKind::badSizePrefix:
    chunk() << "has a size prefix of " << fault.claimedBytes
            << " bytes, beyond the largest buffer a chunk may hold";
    break;
  case LogFaultKind::outOfMemory:
    chunk() << '(' << fault.claimedBytes << " bytes) is too large to read into memory";
    break;
  case LogFaultKind::badRoot:
    chunk() << '(' << fault.claimedBytes << " bytes) "
            << (fault.claimedBytes < ChunkLimits::minBytes
                    ? "is too small for a buffer"
                    : "has a root offset outside its buffer");
    break;
  case LogFaultKind::failedVerification:
    chunk() << '(' << fault.claimedBytes << " bytes) fails verification";
    break;
  }
  return text.str();
}

bool isNotALog(const LogFault& fault) {
  return fault.kind == LogFaultKind::cannotOpen || fault.kind == LogFaultKind::notRegularFile ||
         fault.kind == LogFaultKind::emptyFile || fault.kind == LogFaultKind::textFile;
}

std::string describeLogFault(const LogFault& fault) {
  return fault.path + (isNotALog(fault) ? " " : ": ") + describeLogFaultWithoutPath(fault);
}

LogFault recognizeText(LogFault fault) {
  if (fault.chunk == 0 && !isNotALog(fault) && startsWithText(fault.path))
    fault.kind = LogFaultKind::textFile;
  return fault;
}

} // namespace kvt::profiling
