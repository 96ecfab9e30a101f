// The chunk loop of a parse, keeping count of what was read so that a failure can say where.
#include "ParseDriver.h"

#include "LogChunkReader.h"
#include "plugin/Logging.h"

namespace kvt::profiling {

namespace {

// The fault of a chunk the reader refuses, with its report to the log facility.
LogFault refuseChunk(const LogChunkReader& reader, LogFaultKind kind) {
  logMessage(logError, "Corrupted flatbuffer binary stream");
  return reader.describeChunk(kind);
}

// The fault of the first bad chunk, or none when the file was read to its end.
std::optional<LogFault> readChunks(LogChunkReader& reader, const std::string& path,
                                   FlatBufferReaderUtil& streamReader,
                                   const std::function<void()>& drainChunk,
                                   const LogReadOptions& options, LogReadResult& result) {
  const bool wholeOnly = options.wholeChunksOnly;
  for (;;) {
    switch (reader.readNextChunk(wholeOnly)) {
    case LogChunkReader::Status::endOfFile:
      if (wholeOnly && reader.trailingBytes() != 0)
        return refuseChunk(reader, LogFaultKind::prefixCutShort);
      return std::nullopt;
    case LogChunkReader::Status::oversized:
      // Larger than any buffer the verifier accepts: refused as it would refuse it.
      return refuseChunk(reader, LogFaultKind::badSizePrefix);
    case LogChunkReader::Status::cutShort:
      return refuseChunk(reader, LogFaultKind::cutShort);
    case LogChunkReader::Status::outOfMemory:
      logMessage(logError, "Out of memory for a chunk of %s", path.c_str());
      return reader.describeChunk(LogFaultKind::outOfMemory);
    case LogChunkReader::Status::chunk:
      if (!streamReader.loadBuffer(reader.chunk())) {
        if (reader.chunkCutShort())
          return reader.describeChunk(LogFaultKind::cutShort);
        return reader.describeChunk(hasPlausibleRoot(reader.chunk())
                                        ? LogFaultKind::failedVerification
                                        : LogFaultKind::badRoot);
      }
      drainChunk();
      ++result.chunksRead;
      result.bytesRead += 4 + reader.chunk().size();
      break;
    }
  }
}

} // namespace

std::string describePartialRead(const LogReadResult& read) {
  return read.fault->path + ": read " + std::to_string(read.chunksRead) + " whole chunk" +
         (read.chunksRead == 1 ? "" : "s") + " (" + std::to_string(read.bytesRead) +
         " bytes), dropped the rest: " + describeLogFaultWithoutPath(*read.fault);
}

LogReadResult readLogChunks(const std::string& path, FlatBufferReaderUtil& streamReader,
                            const std::function<void()>& drainChunk,
                            const LogReadOptions& options) {
  LogReadResult result;
  LogChunkReader reader;
  if (!reader.open(path)) {
    logMessage(logError, "Invalid or nonexistent file: %s", path.c_str());
    result.fault = reader.openFailure();
    return result;
  }
  result.fault = readChunks(reader, path, streamReader, drainChunk, options, result);
  if (result.chunksRead == 0 && options.wholeChunksOnly) {
    if (!result.fault && reader.trailingBytes() == 0)
      result.fault = makeLogFault(LogFaultKind::emptyFile, path);
    else if (result.fault)
      result.fault = recognizeText(*result.fault);
  }
  return result;
}

} // namespace kvt::profiling
