// A log's chunks on output: each buffer after its 4-byte little-endian size.
#pragma once

#include "log/OutputFile.h"

#include <cstdint>
#include <span>

namespace kvt::profiling {

// Appends one chunk to file; false once any write has failed. The buffer must be smaller than
// 4 GiB.
bool writeChunk(OutputFile& file, std::span<const uint8_t> buffer);

} // namespace kvt::profiling
