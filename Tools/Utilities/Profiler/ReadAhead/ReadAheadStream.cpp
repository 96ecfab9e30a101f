// One lock guards the file and the window: reading a chunk's bytes is quick next to verifying
// them, which the helpers do unlocked, each on a chunk of its own.
#include "ReadAheadStream.h"

#include <algorithm>
#include <system_error>

namespace kvt::profiling {

ReadAheadStream::ReadAheadStream(LogChunkReader& file, bool wholeOnly, unsigned helperCount,
                                 ReadAheadWindow window)
    : file(file), wholeOnly(wholeOnly), window{std::max<uint32_t>(window.chunks, 1), window.bytes},
      slots(this->window.chunks + 1) {
  // More helpers than chunks in the window would only wait.
  const unsigned wanted = std::min<unsigned>(helperCount, this->window.chunks);
  helpers.reserve(wanted); // so that only starting a thread can fail below
  try {
    for (unsigned i = 0; i < wanted; ++i)
      helpers.emplace_back([this] { help(); });
  } catch (const std::system_error&) {
    // Fewer helpers than asked for still read ahead; with none the caller reads alone.
  }
}

ReadAheadStream::~ReadAheadStream() {
  {
    const std::lock_guard lock(mutex);
    stopping = true;
  }
  roomMade.notify_all();
  helpers.clear(); // joins them before the slots go
}

bool ReadAheadStream::hasRoom() const {
  const uint64_t stepsAhead = nextToRead - nextToHand;
  return stepsAhead < window.chunks && (stepsAhead == 0 || bytesAhead < window.bytes);
}

void ReadAheadStream::help() {
  std::unique_lock lock(mutex);
  for (;;) {
    roomMade.wait(lock, [this] { return stopping || finished || hasRoom(); });
    if (stopping || finished)
      return;
    Slot& slot = slots[nextToRead++ % slots.size()];
    const LogChunkReader::Status status = file.readNextChunk(wholeOnly);
    file.exchangeBuffer(slot.buffer);
    slot.step = {status, {}, file.place(), Verification::pending};
    if (status == LogChunkReader::Status::chunk) {
      slot.step.bytes = slot.buffer.bytes();
      bytesAhead += slot.step.bytes.size();
      lock.unlock();
      const bool valid = verifyChunk(slot.step.bytes);
      lock.lock();
      slot.step.verification = valid ? Verification::passed : Verification::failed;
      finished = !valid || finished;
    } else {
      finished = true;
    }
    slot.ready = true;
    stepReady.notify_all();
    if (finished)
      roomMade.notify_all(); // the other helpers are done too
  }
}

void ReadAheadStream::giveBack(Slot& slot) {
  bytesAhead -= slot.step.bytes.size();
  slot.ready = false;
  // A large chunk's memory is not kept in every slot it passes through.
  if (slot.buffer.heldBytes() > window.bytes / window.chunks)
    slot.buffer.release();
}

StreamedChunk ReadAheadStream::next() {
  std::unique_lock lock(mutex);
  if (nextToHand > 0)
    giveBack(slots[(nextToHand - 1) % slots.size()]);
  Slot& slot = slots[nextToHand % slots.size()];
  stepReady.wait(lock, [&slot] { return slot.ready; });
  ++nextToHand;
  roomMade.notify_all();
  return slot.step;
}

} // namespace kvt::profiling
