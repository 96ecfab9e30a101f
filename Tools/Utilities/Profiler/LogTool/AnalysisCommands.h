// The log tool's commands that read logs through the reader's parse: stats and compare.
#pragma once

#include "ToolConsole.h"

#include <span>
#include <string>
#include <string_view>

namespace kvt::profiling {

// Whether args (after the program name) name one of these commands.
bool isAnalysisCommand(std::span<const std::string_view> args);

// Runs the command args name and returns the tool's exit status; help goes to console.out, a
// wrong command line to console.err with exitUsage.
int runAnalysisCommand(std::span<const std::string_view> args, ToolConsole& console);

} // namespace kvt::profiling
