// The chunks of an open log in file order, as the parse driver takes them. The driver reads
// them itself, on its own thread; a tool may hand it chunks that were read and verified ahead.
#pragma once

#include "FlatBufferReaderUtil.h"
#include "LogChunkReader.h"

#include <span>

namespace kvt::profiling {

// One step through the file: a chunk, or why there is none.
struct StreamedChunk {
  LogChunkReader::Status status = LogChunkReader::Status::endOfFile;
  std::span<const uint8_t> bytes; // of a chunk; valid until the next step
  ChunkPlace place;
  Verification verification = Verification::pending;
};

class ChunkStream {
public:
  virtual ~ChunkStream() = default;
  // The next step; after any status but chunk, there is none.
  virtual StreamedChunk next() = 0;
};

// Each chunk read when it is asked for and left for the driver to verify.
class SerialChunkStream final : public ChunkStream {
public:
  SerialChunkStream(LogChunkReader& file, bool wholeOnly) : file(file), wholeOnly(wholeOnly) {}

  StreamedChunk next() override {
    const LogChunkReader::Status status = file.readNextChunk(wholeOnly);
    return {status, file.chunk(), file.place(), Verification::pending};
  }

private:
  LogChunkReader& file;
  bool wholeOnly;
};

} // namespace kvt::profiling
