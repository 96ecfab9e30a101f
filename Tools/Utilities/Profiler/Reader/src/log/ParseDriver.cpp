// The chunk loop of a parse, keeping count of what was read so that a failure can say where.
#include "ParseDriver.h"

#include "LogChunkReader.h"
#include "plugin/Logging.h"

namespace kvt::profiling {

namespace {

// The fault of a chunk the reader refuses, with its report to the log facility.
LogFault refuseChunk(const std::string& path, const ChunkPlace& place, LogFaultKind kind) {
  logMessage(logError, "Corrupted flatbuffer binary stream");
  return describeChunkAt(path, place, kind);
}

// The fault of the first bad chunk, or none when the file was read to its end. last is the
// final step taken.
std::optional<LogFault> readChunks(ChunkStream& stream, const std::string& path,
                                   FlatBufferReaderUtil& streamReader,
                                   const std::function<void()>& drainChunk,
                                   const LogReadOptions& options, LogReadResult& result,
                                   StreamedChunk& last) {
  for (;;) {
    last = stream.next();
    const ChunkPlace& place = last.place;
    switch (last.status) {
    case LogChunkReader::Status::endOfFile:
      if (options.wholeChunksOnly && place.bytesAfterPrefix != 0)
        return refuseChunk(path, place, LogFaultKind::prefixCutShort);
      return std::nullopt;
    case LogChunkReader::Status::oversized:
      // Larger than any buffer the verifier accepts: refused as it would refuse it.
      return refuseChunk(path, place, LogFaultKind::badSizePrefix);
    case LogChunkReader::Status::cutShort:
      return refuseChunk(path, place, LogFaultKind::cutShort);
    case LogChunkReader::Status::outOfMemory:
      logMessage(logError, "Out of memory for a chunk of %s", path.c_str());
      return describeChunkAt(path, place, LogFaultKind::outOfMemory);
    case LogChunkReader::Status::chunk:
      if (!streamReader.loadBuffer(last.bytes, last.verification)) {
        if (place.cutShort())
          return describeChunkAt(path, place, LogFaultKind::cutShort);
        return describeChunkAt(path, place,
                               hasPlausibleRoot(last.bytes) ? LogFaultKind::failedVerification
                                                            : LogFaultKind::badRoot);
      }
      drainChunk();
      ++result.chunksRead;
      result.bytesRead += 4 + last.bytes.size();
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
  StreamedChunk last;
  {
    const std::unique_ptr<ChunkStream> stream =
        options.openStream ? options.openStream(reader, options.wholeChunksOnly)
                           : std::make_unique<SerialChunkStream>(reader, options.wholeChunksOnly);
    result.fault = readChunks(*stream, path, streamReader, drainChunk, options, result, last);
  } // a stream reading ahead stops before its file closes
  if (result.chunksRead == 0 && options.wholeChunksOnly) {
    if (!result.fault && last.place.bytesAfterPrefix == 0)
      result.fault = makeLogFault(LogFaultKind::emptyFile, path);
    else if (result.fault)
      result.fault = recognizeText(*result.fault);
  }
  return result;
}

} // namespace kvt::profiling
