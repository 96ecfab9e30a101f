// Every figure the page draws of one series: its summary, its box-and-whisker, its histogram and
// its execution points. The page only draws them.
#pragma once

#include "ExecutionPoints.h"
#include "statistics/SeriesList.h"
#include "statistics/SeriesSummary.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kvt::profiling {

inline constexpr size_t histogramBins = 32; // bars of a series' histogram

// Counts of values in bins of equal width on a logarithmic axis from low to high (values below 1
// count as 1); one bin when high is not above both low and 1.
struct LogHistogram {
  uint64_t low = 0;
  uint64_t high = 0;
  std::vector<uint64_t> counts;
};

// The nearest-rank percentiles 1, 25, 50, 75 and 99 of a box-and-whisker picture: the box from
// p25 to p75 with the median in it, the whiskers out to p1 and p99 (the min and max are in the
// summary).
using BoxFigures = std::array<uint64_t, 5>;

struct SeriesFigures {
  SeriesKind kind = SeriesKind::duration;
  std::string name;
  std::optional<std::string> parent;
  std::optional<uint64_t> occurrence;
  SeriesSummary summary;
  std::optional<BoxFigures> box;         // none without counted values
  std::optional<LogHistogram> histogram; // none without counted values
  std::optional<double> share;           // spans of steps only: percent of the steps' mean sum
  ExecutionPoints points;                // every value of the series in execution order, thinned
  uint64_t values = 0;                   // how many the points were thinned from
  uint64_t skippedValues = 0;            // the first of those, from skipped executions
};

// The histogram of sorted, non-empty values over [low, high], which must hold them all.
LogHistogram binLogarithmically(std::span<const uint64_t> sorted, uint64_t low, uint64_t high);

// The summary, box and histogram of a series whose values are sorted; its key from ref.
SeriesFigures figureSeries(const SeriesRef& ref);

} // namespace kvt::profiling
