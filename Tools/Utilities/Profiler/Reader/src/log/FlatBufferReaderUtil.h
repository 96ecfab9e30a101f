// Verifies one chunk of a profiling log and hands out its messages one at a time.
#pragma once

#include "ProfileLog_generated.h"

#include <cstdint>
#include <span>

namespace kvt::profiling {

// Verifier settings for one chunk.
struct ChunkLimits {
  static constexpr flatbuffers::uoffset_t maxDepth =
      64; // nesting of tables before a chunk is invalid
  static constexpr flatbuffers::uoffset_t maxTables =
      4294967295u;                                // tables per chunk; no practical cap
  static constexpr size_t minBytes = 12;          // the smallest buffer FlatBuffers can hold
  static constexpr size_t maxBytes = 2147483647u; // the verifier's largest buffer, exclusive
};

// The cheap structural checks that come before verification: at least minBytes, below maxBytes,
// and a root offset that is neither 0 nor has bit 31 set and lies inside the buffer.
bool hasPlausibleRoot(std::span<const uint8_t> buffer);

// Whether buffer is a valid log buffer: plausible and verified, depending on its bytes alone.
// Reports nothing, so that it may run ahead of the chunk being read, on any thread.
bool verifyChunk(std::span<const uint8_t> buffer);

// What is known of a buffer before it is loaded.
enum class Verification : uint8_t {
  pending, // not verified yet
  passed,  // verifyChunk said yes
  failed,  // verifyChunk said no
};

class FlatBufferReaderUtil {
public:
  virtual ~FlatBufferReaderUtil() = default;

  // Verifies buffer, unless that is known already, and makes it current. The caller keeps the
  // bytes alive while it takes messages. False, with "Corrupted flatbuffer binary stream"
  // reported, when the bytes are no valid log buffer; the previous state then stays.
  bool loadBuffer(std::span<const uint8_t> buffer,
                  Verification verification = Verification::pending);

  // The next message of the current buffer, or null once they are exhausted.
  const schema::Message* nextMessage();

  // The header of the first loaded buffer that had one; null before that. Points into that
  // buffer, so it is valid only while that buffer is.
  const schema::LogHeader* header() const { return headerTable; }

private:
  const schema::ProfileLog* rootTable = nullptr;
  const schema::LogHeader* headerTable = nullptr;
  const flatbuffers::Vector<flatbuffers::Offset<schema::Message>>* messages = nullptr;
  uint64_t messageCounter = 0;
};

} // namespace kvt::profiling
