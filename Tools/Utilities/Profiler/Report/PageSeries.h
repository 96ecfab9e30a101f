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

inline constexpr size_t histogramBins = 32; // bars of a series' histogram, at most

// Counts of values in bins of equal width: on a logarithmic axis from low to high (values below 1
// count as 1), or, when the values span less than their smallest (or than 2 x histogramBins), in
// whole-number bins of width units from low, so that no bin of integer values comes out empty by
// its rounding alone.
struct Histogram {
  bool logarithmic = false;
  uint64_t low = 0;
  uint64_t high = 0;  // logarithmic bins only
  uint64_t width = 0; // whole-number bins only
  std::vector<uint64_t> counts;
};

// The nearest-rank percentiles 1, 25, 50, 75 and 99 of a box-and-whisker picture: the box from
// p25 to p75 with the median in it, the whiskers out to p1 and p99 (the min and max are in the
// summary).
using BoxFigures = std::array<uint64_t, 5>;

struct PageSeries {
  SeriesKind kind = SeriesKind::duration;
  std::string name;
  std::optional<std::string> parent;
  std::optional<uint64_t> occurrence;
  SeriesSummary summary;
  std::optional<BoxFigures> box;      // none without counted values
  std::optional<Histogram> histogram; // none without counted values
  std::optional<double> share;        // spans of steps only: percent of the steps' mean sum
  ExecutionPoints points;             // every value of the series in execution order, thinned
  uint64_t values = 0;                // how many the points were thinned from
  uint64_t skippedValues = 0;         // the first of those, from skipped executions
};

// The histogram of sorted values over [low, high], which must hold them all. Example: {40, 41, 60}
// over [40, 60] is 21 bins of width 1 from 40, counting 1, 1, 0, ..., 0, 1.
Histogram binValues(std::span<const uint64_t> sorted, uint64_t low, uint64_t high);

// The summary, box and histogram of a series whose values are sorted; its key from ref.
PageSeries figurePageSeries(const SeriesRef& ref);

} // namespace kvt::profiling
