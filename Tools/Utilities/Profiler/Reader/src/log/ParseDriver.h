// Drives the reading of a whole log: every chunk is verified into the stream reader and then
// drained by the caller before the next one is read.
#pragma once

#include "FlatBufferReaderUtil.h"

#include <functional>
#include <string>

namespace kvt::profiling {

// Loads each chunk of the log at path into streamReader and calls drainChunk once it is current.
// False when the file cannot be opened ("Invalid or nonexistent file: %s") or a chunk is invalid
// ("Corrupted flatbuffer binary stream"); the chunks before an invalid one have been drained.
bool readLogChunks(const std::string& path, FlatBufferReaderUtil& streamReader,
                   const std::function<void()>& drainChunk);

} // namespace kvt::profiling
