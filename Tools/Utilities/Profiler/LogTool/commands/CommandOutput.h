// Where a command's output goes: the standard output, or with -o a file written whole.
#pragma once

#include "ToolConsole.h"

#include <string>
#include <string_view>

namespace kvt::profiling {

// Puts text on console.out when outputPath is empty, else writes it as the file outputPath (see
// OutputFile). False, with "COMMAND: cannot write PATH: REASON" on console.err, when the file
// cannot be written.
bool writeCommandOutput(ToolConsole& console, std::string_view command,
                        const std::string& outputPath, std::string_view text);

} // namespace kvt::profiling
