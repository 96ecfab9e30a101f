// Chunk framing: bounds are checked against the file's size before any memory is committed.
#include "LogChunkReader.h"

#include "FlatBufferReaderUtil.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <system_error>

#if defined(_WIN32)
#include <share.h>
#endif

namespace kvt::profiling {

namespace {

std::FILE* openShared(const std::string& path) {
#if defined(_WIN32)
  return _fsopen(path.c_str(), "rb", _SH_DENYNO);
#else
  return std::fopen(path.c_str(), "rb");
#endif
}

// What an open file is when it is no regular file ("a directory"); empty for a regular file,
// whose size is then in bytes.
std::string findNonRegularType(std::FILE* file, uint64_t& bytes) {
#if defined(_WIN32)
  struct _stat64 status;
  if (_fstat64(_fileno(file), &status) != 0)
    return "unreadable";
  if ((status.st_mode & _S_IFDIR) != 0)
    return "a directory";
  if ((status.st_mode & _S_IFREG) == 0)
    return "not a regular file";
#else
  struct stat status;
  if (fstat(fileno(file), &status) != 0)
    return "unreadable";
  if (S_ISDIR(status.st_mode))
    return "a directory";
  if (S_ISFIFO(status.st_mode))
    return "a pipe";
  if (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode))
    return "a device";
  if (!S_ISREG(status.st_mode))
    return "not a regular file";
#endif
  bytes = uint64_t(status.st_size);
  return {};
}

} // namespace

LogChunkReader::~LogChunkReader() {
  if (file)
    std::fclose(file);
}

bool LogChunkReader::open(const std::string& path) {
  this->path = path;
  failure = makeLogFault(LogFaultKind::cannotOpen, path);
  file = openShared(path);
  if (!file) {
    failure.systemReason = std::generic_category().message(errno);
    return false;
  }
  failure.pathType = findNonRegularType(file, bytesLeft);
  if (failure.pathType.empty())
    return true;
  failure.kind = LogFaultKind::notRegularFile;
  std::fclose(file);
  file = nullptr;
  return false;
}

LogFault describeChunkAt(const std::string& path, const ChunkPlace& place, LogFaultKind kind) {
  LogFault fault = makeLogFault(kind, path);
  fault.chunk = place.index;
  fault.offset = place.offset;
  fault.claimedBytes = place.claimedBytes;
  fault.bytesLeft = place.bytesAfterPrefix;
  return fault;
}

LogChunkReader::Status LogChunkReader::readNextChunk(bool wholeOnly) {
  latest.index += started ? 1 : 0;
  started = true;
  latest.offset = nextOffset;
  latest.claimedBytes = 0;
  uint8_t prefix[4] = {};
  const uint64_t bytesBefore = bytesLeft;
  const size_t prefixBytes = std::fread(prefix, 1, sizeof prefix, file);
  bytesLeft -= std::min<uint64_t>(bytesLeft, prefixBytes);
  latest.bytesAfterPrefix = prefixBytes < sizeof prefix ? bytesBefore : bytesLeft;
  if (prefixBytes < sizeof prefix)
    return Status::endOfFile;
  const uint32_t size = uint32_t(prefix[0]) | uint32_t(prefix[1]) << 8 | uint32_t(prefix[2]) << 16 |
                        uint32_t(prefix[3]) << 24;
  latest.claimedBytes = size;
  nextOffset = latest.offset + sizeof prefix + size;
  if (size >= ChunkLimits::maxBytes)
    return Status::oversized;

  // A chunk cut short by the end of the file is zero-padded; only the pages the verifier
  // touches of that padding ever take memory.
  const bool truncated = size > bytesLeft;
  if (truncated && wholeOnly)
    return Status::cutShort;
  uint8_t* bytes = truncated ? buffer.reserveZeroed(size) : buffer.reserve(size);
  if (!bytes && size != 0)
    return Status::outOfMemory;
  const size_t wanted = truncated ? size_t(bytesLeft) : size;
  const size_t got = wanted ? std::fread(bytes, 1, wanted, file) : 0;
  if (got < size && !truncated)
    std::memset(bytes + got, 0, size - got); // the file shrank under us
  bytesLeft -= std::min<uint64_t>(bytesLeft, got);
  return Status::chunk;
}

} // namespace kvt::profiling
