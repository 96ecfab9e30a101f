// One streaming pass over a log through the reader's parse and dispatch, gathering the series of
// every graph's executions.
#pragma once

#include "RunStatistics.h"
#include "SeriesList.h"
#include "plugin/VisibilityLevel.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace kvt::profiling {

// Receives a series of a graph once the pass is over, before its values are sorted: every value
// in execution order, the skippedValues of the skipped executions first. The reference and the
// values live only during the call.
using OrderedSeriesSink =
    std::function<void(const GraphStatistics& graph, const SeriesRef& series,
                       std::span<const uint64_t> ordered, uint64_t skippedValues)>;

struct StatisticsOptions {
  VisibilityLevel visibilityLevel = VisibilityLevel::keepAll;
  uint64_t skipFirst = 0;           // executions of each graph left out of every series but first
  std::optional<std::string> graph; // the one graph to gather; every graph when none
  // Keep what the whole chunks before a bad one gave (run.partial says how far the read came)
  // instead of failing; a path that is no log still fails.
  bool partial = false;
  // When set, skipped executions' values are kept too until each series is handed to it.
  OrderedSeriesSink orderedSeries;
};

// Reads the log at path into run, under the tools' rule that a log is whole chunks. Incomplete
// (false as a condition) when the file is no log or a chunk is bad, with the fault and the
// reader's own report to the log facility; run is then left as it was, unless options.partial
// and the fault is a bad chunk: then run holds the chunks before it. Memory: one chunk and 8
// bytes per value kept, up to twice that while a series grows (each counted execution keeps its
// duration, its queue wait, each top-level record's value and each step's span and wait).
LogReadResult readRunStatistics(const std::string& path, const StatisticsOptions& options,
                                RunStatistics& run);

} // namespace kvt::profiling
