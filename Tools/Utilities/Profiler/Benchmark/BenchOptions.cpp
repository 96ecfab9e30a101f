// Options with a number each, --quick for a run of seconds, --work-dir for the logs' place.
#include "BenchOptions.h"

#include <charconv>
#include <cstdio>

namespace kvt::profiling {

namespace {

constexpr const char* usage =
    "usage: kvt-profile-bench [OPTIONS]\n"
    "Synthesises profiling logs with kvt-profile-log and measures, each run in a process of its\n"
    "own: the floor (every chunk read and verified, every field read once), the trace reader\n"
    "and the CSV reader, loaded from their shared libraries as the viewer loads them; then the\n"
    "trace reader on one graph with 10x, 100x and 1000x the executions, and on one step level of\n"
    "10,000 distinct identifiers.\n"
    "\n"
    "  --executions E        executions of each of the 4 graphs of the main log (default 9000,\n"
    "                        about 1.2 GB)\n"
    "  --scaling-base E      the scaling series runs 10, 100 and 1000 times E executions\n"
    "                        (default 20)\n"
    "  --wide-executions E   executions of the graph of 10,000 steps (default 1000)\n"
    "  --runs N              best of N runs of the floor and the trace reader (default 3)\n"
    "  --csv-runs N          best of N runs of the CSV reader (default 1)\n"
    "  --quick               small logs and one run each: a check that takes seconds\n"
    "  --work-dir DIR        where the logs and outputs are written (default: a fresh\n"
    "                        directory in the temporary directory, removed at the end)\n";

template <typename Number> bool parseNumber(std::string_view text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number > 0;
}

} // namespace

std::optional<BenchOptions> parseBenchOptions(std::span<const std::string_view> args) {
  BenchOptions options;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string_view option = args[i];
    if (option == "--help" || option == "-h") {
      std::fputs(usage, stderr);
      return std::nullopt;
    }
    if (option == "--quick") {
      options.executions = 300;
      options.scalingBase = 1;
      options.wideExecutions = 10;
      options.runs = 1;
      options.csvRuns = 1;
      continue;
    }
    if (i + 1 == args.size()) {
      std::fprintf(stderr, "kvt-profile-bench: %.*s needs a value\n%s", int(option.size()),
                   option.data(), usage);
      return std::nullopt;
    }
    const std::string_view value = args[++i];
    bool valid = true;
    if (option == "--executions")
      valid = parseNumber(value, options.executions);
    else if (option == "--scaling-base")
      valid = parseNumber(value, options.scalingBase);
    else if (option == "--wide-executions")
      valid = parseNumber(value, options.wideExecutions);
    else if (option == "--runs")
      valid = parseNumber(value, options.runs);
    else if (option == "--csv-runs")
      valid = parseNumber(value, options.csvRuns);
    else if (option == "--work-dir")
      options.workDir = value;
    else
      valid = false;
    if (!valid) {
      std::fprintf(stderr, "kvt-profile-bench: bad option %.*s %.*s\n%s", int(option.size()),
                   option.data(), int(value.size()), value.data(), usage);
      return std::nullopt;
    }
  }
  return options;
}

} // namespace kvt::profiling
