// Reusable and lazily zeroed chunk memory.
#include "ChunkBuffer.h"

#include <new>
#include <utility>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace kvt::profiling {

ChunkBuffer::~ChunkBuffer() {
  unmapZeroed();
}

uint8_t* ChunkBuffer::reserve(size_t bytes) {
  unmapZeroed();
  if (bytes > reusableBytes) {
    reusable.reset(); // give the old block back before asking for the larger one
    reusableBytes = 0;
    reusable.reset(new (std::nothrow) uint8_t[bytes]);
    if (!reusable)
      return nullptr;
    reusableBytes = bytes;
  }
  current = reusable.get();
  currentBytes = bytes;
  return reusable.get();
}

uint8_t* ChunkBuffer::reserveZeroed(size_t bytes) {
  unmapZeroed();
  current = nullptr;
  currentBytes = 0;
  if (bytes == 0)
    return nullptr;
#if defined(_WIN32)
  zeroed = VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
#else
  zeroed = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE,
                -1, 0);
  if (zeroed == MAP_FAILED)
    zeroed = nullptr;
#endif
  if (!zeroed)
    return nullptr;
  zeroedBytes = bytes;
  current = static_cast<const uint8_t*>(zeroed);
  currentBytes = bytes;
  return static_cast<uint8_t*>(zeroed);
}

std::span<const uint8_t> ChunkBuffer::bytes() const {
  return {current, currentBytes};
}

void ChunkBuffer::release() {
  unmapZeroed();
  reusable.reset();
  reusableBytes = 0;
  current = nullptr;
  currentBytes = 0;
}

void swap(ChunkBuffer& a, ChunkBuffer& b) noexcept {
  using std::swap;
  swap(a.reusable, b.reusable);
  swap(a.reusableBytes, b.reusableBytes);
  swap(a.zeroed, b.zeroed);
  swap(a.zeroedBytes, b.zeroedBytes);
  swap(a.current, b.current);
  swap(a.currentBytes, b.currentBytes);
}

void ChunkBuffer::unmapZeroed() {
  if (!zeroed)
    return;
#if defined(_WIN32)
  VirtualFree(zeroed, 0, MEM_RELEASE);
#else
  munmap(zeroed, zeroedBytes);
#endif
  zeroed = nullptr;
  zeroedBytes = 0;
}

} // namespace kvt::profiling
