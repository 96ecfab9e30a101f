// Memory for one chunk of a log: a buffer reused from chunk to chunk, or, for a chunk that
// claims more bytes than the file holds, lazily mapped zero pages that cost nothing until read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace kvt::profiling {

class ChunkBuffer {
public:
  ChunkBuffer() = default;
  ChunkBuffer(const ChunkBuffer&) = delete;
  ChunkBuffer& operator=(const ChunkBuffer&) = delete;
  ~ChunkBuffer();

  // Room for bytes of uninitialised memory, 16-byte aligned; null when it cannot be had.
  uint8_t* reserve(size_t bytes);
  // Room for bytes of zeros, 16-byte aligned, whose untouched pages take no memory; null when
  // the address space cannot be had.
  uint8_t* reserveZeroed(size_t bytes);
  // The bytes of the latest reservation.
  std::span<const uint8_t> bytes() const;
  // The memory held, whether in use or kept for reuse.
  size_t heldBytes() const { return reusableBytes + zeroedBytes; }
  // Gives all memory back.
  void release();

  friend void swap(ChunkBuffer& a, ChunkBuffer& b) noexcept;

private:
  void unmapZeroed();

  std::unique_ptr<uint8_t[]> reusable;
  size_t reusableBytes = 0;
  void* zeroed = nullptr;
  size_t zeroedBytes = 0;
  const uint8_t* current = nullptr;
  size_t currentBytes = 0;
};

} // namespace kvt::profiling
