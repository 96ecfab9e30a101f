// The reports of kvt-profile-log stats: an aligned table per graph, one JSON document, or CSV.
#pragma once

#include "statistics/RunStatistics.h"

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>

namespace kvt::profiling {

enum class StepOrder {
  share, // largest share first; equal shares in log order
  order, // as the steps first appeared
  name,  // by name, then parent, then occurrence
};

struct StatsTableOptions {
  StepOrder order = StepOrder::share;
  std::optional<size_t> top; // rows kept per graph, after sorting
};

// Per graph a header line (name, executions counted and skipped, duration p50 and p99), then one
// row per step: name, count, mean, p50, p90, p99, max, first, share %, cumulative %, and the
// distribution picture of its spans. Figures that do not exist print as "-".
void writeStatsTable(std::ostream& out, const RunStatistics& run, const StatsTableOptions& options);

// {"log": logPath, "skipFirst": N, "graphs": [...]}, one graph key or series per line; after
// skipFirst, "partial": {...} (see writePartialJson) when the run was read partially.
void writeStatsJson(std::ostream& out, const RunStatistics& run, const std::string& logPath,
                    uint64_t skipFirst);

// A header line, then one line per series: graph, series, name, parent, occurrence, then the
// summary's figures and the step's share; empty fields where a figure does not exist.
void writeStatsCsv(std::ostream& out, const RunStatistics& run);

} // namespace kvt::profiling
