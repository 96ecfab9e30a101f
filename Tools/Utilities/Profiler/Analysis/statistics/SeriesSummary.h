// The figures of one series of values: count, mean, spread, nearest-rank percentiles and the
// cold-start value.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace kvt::profiling {

// Every figure but first is meaningful only when count is not 0; writers print null then.
struct SeriesSummary {
  uint64_t count = 0;
  double mean = 0;
  double stddev = 0; // population: the divisor is count
  uint64_t min = 0;
  uint64_t p50 = 0;
  uint64_t p90 = 0;
  uint64_t p99 = 0;
  uint64_t max = 0;
  std::optional<uint64_t> first; // the value of the graph's very first execution, skipped or not
};

// The nearest-rank percentile of a sorted, non-empty sample: the value at 1-based rank
// ceil(percent / 100 x n). Example: percent 90 of {1, 2, 3, 4} is rank 4, the value 4.
uint64_t nearestRank(std::span<const uint64_t> sorted, uint32_t percent);

// The summary of values, which must be sorted ascending.
SeriesSummary summarizeSeries(std::span<const uint64_t> sorted, std::optional<uint64_t> first);

} // namespace kvt::profiling
