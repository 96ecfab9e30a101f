// `kvt-profile-log dump`: prints a log's chunks as one JSON document that `build` turns back
// into the same file.
#pragma once

#include "commands/ToolConsole.h"

#include <string>

namespace kvt::profiling {

struct DumpOptions {
  std::string logPath;
};

// Prints {"chunks": [{"offset": ..., "size": ..., "log": {...}}, ...]} on console.out, each
// chunk verified as the reader verifies it. A chunk that fails verification is reported on
// console.err by number (from 0) and offset and left out; a chunk that overruns the file ends
// the dump. The document is complete either way. Returns exitBadInput when any chunk was bad or
// the file could not be read, else exitSuccess.
int dumpLog(const DumpOptions& options, ToolConsole& console);

} // namespace kvt::profiling
