// kvt-profile-bench: measures the reader libraries against the floor of reading a log.
#include "BenchCommandLine.h"
#include "Benchmark.h"
#include "CommandLine.h"

#include <iostream>

int main(int argc, char** argv) {
  using namespace kvt::profiling;
  BenchOptions options;
  CLI::App app("", "kvt-profile-bench");
  addBenchOptions(app, options);
  if (const std::optional<int> status =
          parseCommandLine(app, {argv + 1, argv + argc}, std::cout, std::cerr))
    return *status;
  return runBenchmark(options, {KVT_LOG_TOOL,
                                KVT_TRACE_READER_LIBRARY,
                                KVT_CSV_READER_LIBRARY,
                                {KVT_PYTHON, KVT_PYTHON_MODULE_DIR}});
}
