// The options of a comparison on the command line, as the commands that compare two runs take
// them.
#pragma once

#include "comparison/ComparisonOptions.h"

#include <CLI/CLI.hpp>

namespace kvt::profiling {

// --alpha A, --threshold PCT, --min-change UNITS and --relative into options, each checked by
// the comparison's own rule and shown with its default.
void addComparisonOptions(CLI::App& command, ComparisonOptions& options);

} // namespace kvt::profiling
