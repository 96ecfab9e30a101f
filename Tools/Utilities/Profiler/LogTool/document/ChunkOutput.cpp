// Chunk framing on output.
#include "ChunkOutput.h"

namespace kvt::profiling {

bool writeChunk(OutputFile& file, std::span<const uint8_t> buffer) {
  const auto size = uint32_t(buffer.size());
  const uint8_t prefix[4] = {uint8_t(size), uint8_t(size >> 8), uint8_t(size >> 16),
                             uint8_t(size >> 24)};
  return file.write(prefix) && file.write(buffer);
}

} // namespace kvt::profiling
