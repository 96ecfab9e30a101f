// Drives the reading of a whole log: every chunk is verified into the stream reader and then
// drained by the caller before the next one is read.
#pragma once

#include "ChunkStream.h"
#include "FlatBufferReaderUtil.h"
#include "LogFault.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kvt::profiling {

struct LogReadOptions {
  // The tools' rule that a log is one or more whole chunks: an empty file, a chunk cut short by
  // the end of the file and 1 to 3 bytes after the last chunk are faults. The reader itself
  // accepts an empty file, ignores trailing bytes and verifies a cut chunk zero-padded.
  bool wholeChunksOnly = false;
  // How the chunks of the opened file are read: none reads and verifies each one on the
  // caller's thread when the driver asks for it.
  std::function<std::unique_ptr<ChunkStream>(LogChunkReader& file, bool wholeOnly)> openStream = {};
};

// How far a read came: the chunks verified and drained, and where the first bad one begins.
struct LogReadResult {
  std::optional<LogFault> fault; // the first bad chunk, or why the path is no log; none when
                                 // the whole file was read
  uint64_t chunksRead = 0;       // chunks verified and drained
  uint64_t bytesRead = 0;        // their bytes, size prefixes included

  bool complete() const { return !fault; }
  explicit operator bool() const { return complete(); }
  // Whether what was read stands: the whole log, or, when partial is allowed, the whole chunks
  // before the first bad one. A path that is no log never stands.
  bool stands(bool partial) const { return !fault || (partial && !isNotALog(*fault)); }
};

// What a partial read kept and dropped, one line: "run.log: read 2 whole chunks (416 bytes),
// dropped the rest: chunk 2 at offset 416 is cut short: ...". For an incomplete read.
std::string describePartialRead(const LogReadResult& read);

// Loads each chunk of the log at path into streamReader and calls drainChunk once it is current.
// Incomplete when the file cannot be opened ("Invalid or nonexistent file: %s") or a chunk is
// invalid ("Corrupted flatbuffer binary stream"), both reported to the log facility at level 1;
// the chunks before an invalid one have been drained.
LogReadResult readLogChunks(const std::string& path, FlatBufferReaderUtil& streamReader,
                            const std::function<void()>& drainChunk,
                            const LogReadOptions& options = {});

} // namespace kvt::profiling
