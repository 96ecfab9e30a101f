// The split is placed where a step function fits the values best (least squares, from prefix
// sums in one pass); the rank-sum statistic alone would place it off the step, since among
// splits that separate the values completely it prefers the most balanced one. The rank test
// then tells at that split alone whether the step is real.
#include "ChangeSplit.h"

#include "RankSumTest.h"

#include <algorithm>
#include <vector>

namespace kvt::profiling {

std::optional<ChangeSplit> findChangeSplit(std::span<const double> values, size_t minSide) {
  const size_t n = values.size();
  if (minSide == 0 || n < 2 * minSide)
    return std::nullopt;
  // Centred on the first value, so that values near 2^64 keep their differences.
  const double origin = values.front();
  double total = 0;
  for (const double value : values)
    total += value - origin;
  double prefix = 0;
  for (size_t t = 0; t < minSide; ++t)
    prefix += values[t] - origin;
  std::optional<size_t> best;
  double bestReduction = 0;
  for (size_t t = minSide; t + minSide <= n; prefix += values[t] - origin, ++t) {
    // The squared error a step at t removes: t (n - t) / n x (mean before - mean after)^2.
    const double before = double(t);
    const double after = double(n - t);
    const double difference = prefix / before - (total - prefix) / after;
    const double reduction = before * after / double(n) * difference * difference;
    if (reduction > bestReduction) {
      bestReduction = reduction;
      best = t;
    }
  }
  if (!best)
    return std::nullopt; // no split has sides that differ
  const double splits = double(n - 2 * minSide + 1);
  const double p = rankSumPValue(values.first(*best), values.subspan(*best));
  return ChangeSplit{*best, std::min(1.0, p * splits)};
}

} // namespace kvt::profiling
