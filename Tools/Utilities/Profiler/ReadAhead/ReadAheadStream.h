// Chunks read and verified ahead of the parse on helper threads. Verification depends on a
// chunk's bytes alone and is most of a read's cost, so it spreads over cores while the caller
// dispatches chunks one at a time in file order, as it would alone: every result and message
// stays as a serial read gives it.
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

// How far reading may run ahead of the chunk handed out: at most chunks chunks, and no new one
// is started once bytes are waiting, so that memory stays flat in the log's size.
struct ReadAheadWindow {
  uint32_t chunks = 8;
  uint64_t bytes = uint64_t(64) << 20;
};

class ReadAheadStream final : public ChunkStream {
public:
  // Starts helperCount threads on file, which must outlive the stream: at most one a chunk of the
  // window, fewer when the system gives no more, none at all as started() says.
  ReadAheadStream(LogChunkReader& file, bool wholeOnly, unsigned helperCount,
                  ReadAheadWindow window = {});
  ReadAheadStream(const ReadAheadStream&) = delete;
  ReadAheadStream& operator=(const ReadAheadStream&) = delete;
  // Stops and joins the helpers, wherever the read is.
  ~ReadAheadStream() override;

  bool started() const { return !helpers.empty(); }
  StreamedChunk next() override;

private:
  struct Slot {
    ChunkBuffer buffer;
    StreamedChunk step;
    bool ready = false;
  };

  void help();
  bool hasRoom() const;
  void giveBack(Slot& slot);

  LogChunkReader& file;
  const bool wholeOnly;
  const ReadAheadWindow window;
  std::vector<Slot> slots; // step n in slots[n % size]; one more than the window, for the step
                           // the caller holds
  std::mutex mutex;        // guards everything below and the file
  std::condition_variable stepReady;
  std::condition_variable roomMade;
  uint64_t nextToRead = 0;
  uint64_t nextToHand = 0; // the step after the one the caller holds
  uint64_t bytesAhead = 0; // of steps read and not yet given back
  bool finished = false;   // the last step is read: the end, a fault or a chunk that failed
  bool stopping = false;
  std::vector<std::jthread> helpers;
};

} // namespace kvt::profiling
