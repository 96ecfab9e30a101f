// The benchmark's run: it makes its input logs, measures the floor and both readers on them, and
// prints the figures.
#pragma once

#include "BenchOptions.h"
#include "TableTargets.h"

#include <string>

namespace kvt::profiling {

// The built programs and libraries the benchmark runs.
struct BenchTools {
  std::string logTool;      // kvt-profile-log
  std::string traceLibrary; // the trace reader's shared library
  std::string csvLibrary;   // the CSV reader's shared library
  PythonModule python;
};

// Returns the process exit status: 0 when every measurement succeeded.
int runBenchmark(const BenchOptions& options, const BenchTools& tools);

} // namespace kvt::profiling
