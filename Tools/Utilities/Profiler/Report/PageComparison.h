// The comparison a report page shows: its own record of the comparison of two runs, with what
// the table, the forest plot and a row's detail draw, and nothing else.
#pragma once

#include "PageSeries.h"
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

// The total executions per run at which an unsure row would be decided, per run.
struct PageNeeded {
  uint64_t base = 0;
  uint64_t next = 0;
};

struct PageComparisonRow {
  ComparisonRow row;                         // its verdict, medians, change and p-values
  std::optional<double> marginPercent;       // the verdict's margin; none without a base median
  std::optional<PageNeeded> needed;          // unsure rows with a count
  std::optional<OverlaidHistograms> overlay; // none unless both runs have values
};

struct PageComparison {
  std::string basePath;
  std::string newPath;
  ComparisonOptions options;
  std::vector<GraphShift> graphs;
  std::vector<PageComparisonRow> rows; // in comparison order
  ComparisonTotals totals;
  std::optional<LogReadResult> basePartial; // when only the base's whole chunks were read
};

// Compares next with base; both must hold their sorted values.
PageComparison figurePageComparison(const RunStatistics& base, const RunStatistics& next,
                                    const ComparisonOptions& options);

} // namespace kvt::profiling
