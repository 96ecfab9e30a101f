// Chunk framing: bounds are checked against the file's size before any memory is committed.
#include "LogChunkReader.h"

#include "FlatBufferReaderUtil.h"

#include <cstring>
#include <sys/stat.h>

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

// The size of an open regular file; false for directories and other special files.
bool regularFileBytes(std::FILE* file, uint64_t& bytes) {
#if defined(_WIN32)
  struct _stat64 status;
  if (_fstat64(_fileno(file), &status) != 0 || (status.st_mode & _S_IFREG) == 0)
    return false;
#else
  struct stat status;
  if (fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode))
    return false;
#endif
  bytes = uint64_t(status.st_size);
  return true;
}

} // namespace

LogChunkReader::~LogChunkReader() {
  if (file)
    std::fclose(file);
}

bool LogChunkReader::open(const std::string& path) {
  file = openShared(path);
  if (file && regularFileBytes(file, bytesLeft))
    return true;
  if (file)
    std::fclose(file);
  file = nullptr;
  return false;
}

LogChunkReader::Status LogChunkReader::readNextChunk() {
  uint8_t prefix[4] = {};
  const size_t prefixBytes = std::fread(prefix, 1, sizeof prefix, file);
  bytesLeft -= std::min<uint64_t>(bytesLeft, prefixBytes);
  if (prefixBytes < sizeof prefix)
    return Status::endOfFile;
  const uint32_t size = uint32_t(prefix[0]) | uint32_t(prefix[1]) << 8 | uint32_t(prefix[2]) << 16 |
                        uint32_t(prefix[3]) << 24;
  if (size >= ChunkLimits::maxBytes)
    return Status::oversized;

  // A chunk cut short by the end of the file is zero-padded; only the pages the verifier
  // touches of that padding ever take memory.
  const bool truncated = size > bytesLeft;
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
