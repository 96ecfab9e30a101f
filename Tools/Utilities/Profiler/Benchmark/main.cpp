// kvt-profile-bench: measures the reader libraries against the floor of reading a log.
#include "Benchmark.h"

#include <vector>

int main(int argc, char** argv) {
  const std::vector<std::string_view> args(argv + 1, argv + argc);
  const std::optional<kvt::profiling::BenchOptions> options =
      kvt::profiling::parseBenchOptions(args);
  if (!options)
    return 2;
  return kvt::profiling::runBenchmark(
      *options, {KVT_LOG_TOOL, KVT_TRACE_READER_LIBRARY, KVT_CSV_READER_LIBRARY});
}
