// Series figures. The mean and spread are summed in log-independent sorted order, so the same
// values give the same doubles on every platform.
#include "SeriesSummary.h"

#include <cmath>

namespace kvt::profiling {

uint64_t nearestRank(std::span<const uint64_t> sorted, uint32_t percent) {
  const uint64_t n = sorted.size();
  const uint64_t rank = (uint64_t(percent) * n + 99) / 100; // ceil without floating point
  return sorted[rank == 0 ? 0 : rank - 1];
}

SeriesSummary summarizeSeries(std::span<const uint64_t> sorted, std::optional<uint64_t> first) {
  SeriesSummary summary;
  summary.first = first;
  summary.count = sorted.size();
  if (sorted.empty())
    return summary;
  double sum = 0;
  for (const uint64_t value : sorted)
    sum += double(value);
  summary.mean = sum / double(sorted.size());
  double squares = 0;
  for (const uint64_t value : sorted) {
    const double deviation = double(value) - summary.mean;
    squares += deviation * deviation;
  }
  summary.stddev = std::sqrt(squares / double(sorted.size()));
  summary.min = sorted.front();
  summary.p50 = nearestRank(sorted, 50);
  summary.p90 = nearestRank(sorted, 90);
  summary.p99 = nearestRank(sorted, 99);
  summary.max = sorted.back();
  return summary;
}

} // namespace kvt::profiling
