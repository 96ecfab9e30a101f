// `kvt-profile-log build`: turns JSON back into a log file, either a whole dump document or one
// file per chunk.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kvt::profiling {

struct BuildOptions {
  std::vector<std::string> inputPaths; // one dump document, or the chunk files in log order
  bool chunkFiles = false;             // each input is one chunk's ProfileLog object
  std::string outputPath;
};

// Writes the chunks as the log outputPath, one at a time: a document of any size is built in the
// memory of its largest chunk. Every chunk gets one canonical layout whatever the order of the
// fields in its JSON: it is parsed, printed in schema order and parsed again, which is the layout
// a dump prints and `synth` writes. Keys may be bare or quoted, // comments are allowed, and every
// field the JSON names is stored even when it holds its default. Returns what went wrong, one
// line ("run.json: chunk 2 (line 40): ..." or "cannot write run.log: No space left on device")
// with no file left behind, when an input cannot be read or parsed or the output cannot be
// written; nothing when the log was written.
std::optional<std::string> buildLog(const BuildOptions& options);

} // namespace kvt::profiling
