// The viewer's command line: its options, their checks, and its help.
#pragma once

#include "ViewerOptions.h"

#include <CLI/CLI.hpp>

namespace kvt::profiling {

// Declares the viewer's options on app, storing into options when app parses a command line.
// Values follow their option as the next argument ("--input a.log") or after '='
// ("--input=a.log"); a later option overrides an earlier one. --input is required, no value may be
// empty, and --visibility (-128 to 127) and --log-level (0 to 5) take whole numbers only.
void addViewerOptions(CLI::App& app, ViewerOptions& options);

} // namespace kvt::profiling
