// Drives a built reader library as the viewer does: load it, create a reader for a log, parse
// it, write the outputs, delete the reader.
#pragma once

#include <string>

namespace kvt::profiling {

// Runs the whole sequence once. The statistics the reader prints are discarded; its errors go to
// the standard error. False when the library cannot be loaded or an operation fails.
bool runReaderLibrary(const std::string& libraryPath, const std::string& logPath,
                      const std::string& outputPath);

} // namespace kvt::profiling
