// `kvt-profile-log dump`: prints a log's chunks as one JSON document that `build` turns back
// into the same file.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace kvt::profiling {

struct DumpOptions {
  std::string logPath;
};

// Prints {"chunks": [{"offset": ..., "size": ..., "log": {...}}, ...]} on out, each chunk
// verified as the reader verifies it. A chunk that fails verification is left out; a chunk that
// overruns the file ends the dump. The document is complete either way. Returns what was wrong,
// one line each, in file order: a bad chunk by number (from 0) and offset ("run.log: chunk 2 at
// offset 416 (300 bytes) fails verification"), or why the path is no log; none for a good log.
std::vector<std::string> dumpLog(const DumpOptions& options, std::ostream& out);

} // namespace kvt::profiling
