// Chunk framing on output, with a regular log renamed into place once complete.
#include "ChunkFileWriter.h"

#include <filesystem>

namespace kvt::profiling {

namespace {

constexpr size_t streamBufferBytes = 1 << 20; // large writes keep a synthesised log at disk speed

// Only a regular file, or none, may be replaced by renaming another file over it.
bool isReplaceable(const std::string& path) {
  std::error_code ignored;
  const std::filesystem::file_type type = std::filesystem::symlink_status(path, ignored).type();
  return type == std::filesystem::file_type::regular ||
         type == std::filesystem::file_type::not_found;
}

} // namespace

ChunkFileWriter::ChunkFileWriter(const std::string& path)
    : path(path), partialPath(isReplaceable(path) ? path + ".partial" : "") {
  file = std::fopen(partialPath.empty() ? path.c_str() : partialPath.c_str(), "wb");
  if (file)
    std::setvbuf(file, nullptr, _IOFBF, streamBufferBytes);
}

ChunkFileWriter::~ChunkFileWriter() {
  if (file)
    discard();
}

bool ChunkFileWriter::writeChunk(std::span<const uint8_t> buffer) {
  if (!file || failed)
    return false;
  const auto size = uint32_t(buffer.size());
  const uint8_t prefix[4] = {uint8_t(size), uint8_t(size >> 8), uint8_t(size >> 16),
                             uint8_t(size >> 24)};
  return writeBytes(prefix) && writeBytes(buffer);
}

bool ChunkFileWriter::writeBytes(std::span<const uint8_t> bytes) {
  if (!file || failed)
    return false;
  failed = std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size();
  writtenBytes += bytes.size();
  return !failed;
}

bool ChunkFileWriter::close() {
  if (!file)
    return false;
  if (failed || std::fflush(file) != 0) {
    discard();
    return false;
  }
  const bool closed = std::fclose(file) == 0;
  file = nullptr;
  if (partialPath.empty())
    return closed;
  std::error_code renameError;
  if (closed)
    std::filesystem::rename(partialPath, path, renameError);
  if (!closed || renameError) {
    std::remove(partialPath.c_str());
    return false;
  }
  return true;
}

void ChunkFileWriter::discard() {
  std::fclose(file);
  file = nullptr;
  if (!partialPath.empty())
    std::remove(partialPath.c_str());
}

} // namespace kvt::profiling
