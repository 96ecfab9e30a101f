// The log tool's command line, parsed and run.
#pragma once

#include "ToolConsole.h"

#include <string>
#include <vector>

namespace kvt::profiling {

// Runs the command that args (the arguments after the program name, e.g. {"dump", "run.log"})
// give, and returns the tool's exit code. Help and the version go to console.out with
// exitSuccess; a wrong command line is explained on console.err with exitCommandLineError.
int runToolCommand(const std::vector<std::string>& args, ToolConsole& console);

} // namespace kvt::profiling
