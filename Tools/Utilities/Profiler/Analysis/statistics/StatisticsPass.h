// One streaming pass over a log through the reader's parse and dispatch, gathering the series of
// every graph's executions.
#pragma once

#include "RunStatistics.h"
#include "plugin/VisibilityLevel.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kvt::profiling {

struct StatisticsOptions {
  VisibilityLevel visibilityLevel = VisibilityLevel::keepAll;
  uint64_t skipFirst = 0;           // executions of each graph left out of every series but first
  std::optional<std::string> graph; // the one graph to gather; every graph when none
};

// Reads the log at path into run. False when the file cannot be opened or a chunk is invalid,
// with the reader's own report to the log facility; run is then left as it was. Memory: one
// chunk and 8 bytes per value kept, up to twice that while a series grows (each counted
// execution keeps its duration, its queue wait, each top-level record's value and each step's
// span and wait).
bool readRunStatistics(const std::string& path, const StatisticsOptions& options,
                       RunStatistics& run);

} // namespace kvt::profiling
