// The caller reads and hands out; the helpers, and the caller when they are behind, verify. One
// lock guards the steps' states; nobody holds it while verifying or reading.
#include "ReadAheadStream.h"

#include <algorithm>
#include <system_error>

namespace kvt::profiling {

ReadAheadStream::ReadAheadStream(LogChunkReader& file, bool wholeOnly, unsigned helperCount,
                                 ReadAheadWindow window)
    : file(file), wholeOnly(wholeOnly), window{std::max<uint32_t>(window.chunks, 1), window.bytes},
      slots(this->window.chunks + 1) {
  // More helpers than steps in the window would only wait.
  const unsigned wanted = std::min<unsigned>(helperCount, this->window.chunks);
  helpers.reserve(wanted); // so that only starting a thread can fail below
  try {
    for (unsigned i = 0; i < wanted; ++i)
      helpers.emplace_back([this] { help(); });
  } catch (const std::system_error&) {
    // Fewer helpers still verify ahead; with none the caller does it all.
  }
}

ReadAheadStream::~ReadAheadStream() {
  {
    const std::lock_guard lock(mutex);
    stopping = true;
  }
  stepRead.notify_all();
  helpers.clear(); // joins them before the slots go
}

// Verifies the chunk of a slot just taken from the queue, with the lock released meanwhile.
void ReadAheadStream::verify(Slot& slot, std::unique_lock<std::mutex>& lock) {
  if (slot.step.status == LogChunkReader::Status::chunk) {
    lock.unlock();
    const bool valid = verifyChunk(slot.step.bytes);
    lock.lock();
    slot.step.verification = valid ? Verification::passed : Verification::failed;
  }
  slot.ready = true;
  stepVerified.notify_all();
}

void ReadAheadStream::help() {
  std::unique_lock lock(mutex);
  for (;;) {
    stepRead.wait(lock, [this] { return stopping || nextToVerify < nextToRead; });
    if (stopping)
      return;
    verify(slots[nextToVerify++ % slots.size()], lock);
  }
}

// Reads steps until the window is full: always the one to hand out next, more while fewer than
// window.chunks steps and window.bytes are waiting.
void ReadAheadStream::readAhead() {
  for (;;) {
    {
      const std::lock_guard lock(mutex);
      const uint64_t stepsAhead = nextToRead - nextToHand;
      if (readToEnd || stepsAhead >= window.chunks ||
          (stepsAhead > 0 && bytesAhead >= window.bytes))
        return;
    }
    // The slot is free: the caller gave it back, and no helper takes it before it is counted.
    Slot& slot = slots[nextToRead % slots.size()];
    const LogChunkReader::Status status = file.readNextChunk(wholeOnly);
    file.exchangeBuffer(slot.buffer);
    slot.step = {status, {}, file.place(), Verification::pending};
    if (status == LogChunkReader::Status::chunk)
      slot.step.bytes = slot.buffer.bytes();
    {
      const std::lock_guard lock(mutex);
      slot.ready = false;
      bytesAhead += slot.step.bytes.size();
      readToEnd = status != LogChunkReader::Status::chunk;
      ++nextToRead;
    }
    stepRead.notify_one();
  }
}

StreamedChunk ReadAheadStream::next() {
  {
    const std::lock_guard lock(mutex);
    if (nextToHand > 0) {
      Slot& handed = slots[(nextToHand - 1) % slots.size()];
      // A large chunk's memory is not kept in every slot it passes through.
      if (handed.buffer.heldBytes() > window.bytes / window.chunks)
        handed.buffer.release();
    }
  }
  readAhead();
  std::unique_lock lock(mutex);
  Slot& slot = slots[nextToHand % slots.size()];
  // A step no helper has taken yet is verified here rather than waited for.
  if (!slot.ready && nextToVerify == nextToHand)
    verify(slots[nextToVerify++ % slots.size()], lock);
  stepVerified.wait(lock, [&slot] { return slot.ready; });
  bytesAhead -= slot.step.bytes.size();
  ++nextToHand;
  return slot.step;
}

} // namespace kvt::profiling
