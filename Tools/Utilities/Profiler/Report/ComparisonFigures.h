// The comparison a report page shows: the comparison of the two runs, and for each of its rows
// the two distributions on shared bins, to be overlaid.
#pragma once

#include "SeriesFigures.h"
#include "comparison/RunComparison.h"
#include "statistics/RunStatistics.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kvt::profiling {

// Both runs' values of one series in the same bins.
struct OverlaidHistograms {
  Histogram base;
  Histogram next;
};

struct ComparisonFigures {
  std::string basePath;
  std::string newPath;
  Comparison comparison;
  std::vector<std::optional<OverlaidHistograms>> overlays; // by row; none unless both have values
};

// Compares next with base; both must hold their sorted values.
ComparisonFigures figureComparison(const RunStatistics& base, const RunStatistics& next,
                                   const ComparisonOptions& options);

} // namespace kvt::profiling
