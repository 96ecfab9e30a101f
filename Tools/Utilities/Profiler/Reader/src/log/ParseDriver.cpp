// The chunk loop of a parse.
#include "ParseDriver.h"

#include "LogChunkReader.h"
#include "plugin/Logging.h"

namespace kvt::profiling {

bool readLogChunks(const std::string& path, FlatBufferReaderUtil& streamReader,
                   const std::function<void()>& drainChunk) {
  LogChunkReader reader;
  if (!reader.open(path)) {
    logMessage(logError, "Invalid or nonexistent file: %s", path.c_str());
    return false;
  }
  for (;;) {
    switch (reader.readNextChunk()) {
    case LogChunkReader::Status::endOfFile:
      return true;
    case LogChunkReader::Status::oversized:
      // Larger than any buffer the verifier accepts: refused as it would refuse it.
      logMessage(logError, "Corrupted flatbuffer binary stream");
      return false;
    case LogChunkReader::Status::outOfMemory:
      logMessage(logError, "Out of memory for a chunk of %s", path.c_str());
      return false;
    case LogChunkReader::Status::chunk:
      if (!streamReader.loadBuffer(reader.chunk()))
        return false;
      drainChunk();
      break;
    }
  }
}

} // namespace kvt::profiling
