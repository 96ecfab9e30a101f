// A series' values in execution order, thinned to a bounded number of points for the page's
// execution plot.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kvt::profiling {

// Points of one series: index[i] is the position of value[i] among the series' values in
// execution order, from 0; ascending.
struct ExecutionPoints {
  std::vector<uint64_t> index;
  std::vector<uint64_t> value;
};

// At most maxPoints (2 or more) of values: all of them when they fit; otherwise the values cut
// into maxPoints / 2 runs of equal length, each giving its smallest and its largest value, so
// that the extremes, outliers and phases stay. Example: {5, 1, 9, 2, 8, 3} at 4 points gives
// indexes {1, 2, 3, 4} (runs {5, 1, 9}, {2, 8, 3}).
ExecutionPoints thinExecutionPoints(std::span<const uint64_t> values, size_t maxPoints);

// The same thinning applied again to points already thinned.
ExecutionPoints thinExecutionPoints(const ExecutionPoints& points, size_t maxPoints);

} // namespace kvt::profiling
