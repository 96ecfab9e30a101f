// One run of the viewer: load the reader library, parse the log, write the outputs.
#pragma once

#include "ViewerOptions.h"

namespace kvt::profiling {

// A wrong command line ends in exitCommandLineError (CommandLine.h).
enum ExitCode : int {
  exitSuccess = 0,
  exitFailure = 1, // the library cannot be loaded, the log not parsed or the outputs not written
};

// Loads the chosen reader library, registers the standard-error logger at options.logLevel,
// creates a reader for the input log, parses it and, when that succeeded, writes the outputs;
// the reader and the library are released before returning. The standard output carries only
// what the library prints; every failure is explained on the standard error. Returns
// exitSuccess when the outputs were written, exitFailure otherwise.
int runViewer(const ViewerOptions& options);

} // namespace kvt::profiling
