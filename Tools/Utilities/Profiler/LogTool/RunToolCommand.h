// Runs one parsed command of the log tool.
#pragma once

#include "ToolConsole.h"
#include "ToolOptions.h"

namespace kvt::profiling {

// Runs command and returns the tool's exit code: help goes to console.out with exitSuccess; a
// usage error goes to console.err with the command's usage and exitUsage.
int runToolCommand(const ToolCommand& command, ToolConsole& console);

} // namespace kvt::profiling
