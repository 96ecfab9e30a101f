// One log's statistics pass with the figures of the page: each series' summary, box, histogram
// and thinned execution points.
#pragma once

#include "PageSeries.h"
#include "statistics/RunStatistics.h"
#include "statistics/StatisticsPass.h"

#include <string>
#include <string_view>
#include <vector>

namespace kvt::profiling {

inline constexpr size_t maxPointsPerSeries = 2000; // execution-plot points of one series
inline constexpr size_t maxPointsPerRun = 200000;  // of all series of a run: bounds the page
inline constexpr size_t minPointsPerSeries = 20;   // kept even when a run has very many series

struct GraphFigures {
  std::string name;
  uint64_t executions = 0; // counted and skipped
  uint64_t skipped = 0;
  double stepMeanSum = 0;         // the sum of the steps' mean spans
  std::vector<PageSeries> series; // in the order of listSeries, back-end records left out
};

struct RunFigures {
  std::string log; // the path as given
  std::vector<GraphFigures> graphs;
  std::optional<LogReadResult> partial; // as RunStatistics::partial
};

// Thins every series' points further when the run holds more than maxPointsPerRun: to the same
// even number each, maxPointsPerRun / series, but not below minPointsPerSeries. Example: 150
// series of 2000 points keep 1332 each.
void boundPoints(RunFigures& figures);

// Reads the log at path in one statistics pass (options' sink is replaced) into run, and its
// figures into figures. As readRunStatistics, figures are only made when what was read stands.
LogReadResult readRunFigures(const std::string& path, StatisticsOptions options, RunStatistics& run,
                             RunFigures& figures);

} // namespace kvt::profiling
