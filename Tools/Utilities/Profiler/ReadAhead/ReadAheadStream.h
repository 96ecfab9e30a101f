// Chunks verified ahead of the parse on helper threads. Verification depends on a chunk's bytes
// alone and is much of a read's cost, so it moves to other cores while the caller dispatches
// chunks one at a time in file order, as it would alone: every result and message stays as a
// serial read gives it. The caller still reads each chunk from the file itself, a step or a few
// ahead: the bytes it is to dispatch are then still in its own core's cache, where a chunk read
// by a helper would have to come across first, at the cost of what verifying it there saved.
#pragma once

#include "log/ChunkStream.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace kvt::profiling {

// How far reading may run ahead of the chunk handed out: at most chunks steps, and no new one
// is read once bytes are waiting, so that memory stays flat in the log's size.
struct ReadAheadWindow {
  uint32_t chunks = 2;
  uint64_t bytes = uint64_t(64) << 20;
};

class ReadAheadStream final : public ChunkStream {
public:
  // Starts helperCount threads, fewer when the system gives no more; with none the caller
  // verifies every chunk itself. file must outlive the stream.
  ReadAheadStream(LogChunkReader& file, bool wholeOnly, unsigned helperCount,
                  ReadAheadWindow window = {});
  ReadAheadStream(const ReadAheadStream&) = delete;
  ReadAheadStream& operator=(const ReadAheadStream&) = delete;
  // Stops and joins the helpers, wherever the read is.
  ~ReadAheadStream() override;

  StreamedChunk next() override;

private:
  struct Slot {
    ChunkBuffer buffer;
    StreamedChunk step;
    bool ready = false; // read, and verified when it is a chunk
  };

  void help();
  void readAhead();
  void verify(Slot& slot, std::unique_lock<std::mutex>& lock);

  LogChunkReader& file; // read on the caller's thread only
  const bool wholeOnly;
  const ReadAheadWindow window;
  std::vector<Slot> slots; // step n in slots[n % size]; one more than the window, for the step
                           // the caller holds
  std::mutex mutex;        // guards the slots' steps and the counts below
  std::condition_variable stepRead;
  std::condition_variable stepVerified;
  uint64_t nextToRead = 0;
  uint64_t nextToVerify = 0;
  uint64_t nextToHand = 0; // the step after the one the caller holds
  uint64_t bytesAhead = 0; // of steps read and not yet handed out
  bool readToEnd = false;  // the last step is read: the end of the file or a fault
  bool stopping = false;
  std::vector<std::jthread> helpers;
};

} // namespace kvt::profiling
