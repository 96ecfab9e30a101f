// The benchmark's command line: options with a number each, --quick for a run of seconds,
// --work-dir for the logs' place.
#pragma once

#include "BenchOptions.h"

#include <CLI/CLI.hpp>

namespace kvt::profiling {

// Declares the benchmark's options on app, storing into options when app parses a command line.
// --quick sets small sizes and one run each; an explicit option overrides it wherever it stands.
void addBenchOptions(CLI::App& app, BenchOptions& options);

} // namespace kvt::profiling
