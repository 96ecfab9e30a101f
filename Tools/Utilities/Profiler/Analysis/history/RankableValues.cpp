// Scaling by a power of two is exact, so values that were whole numbers stay apart exactly as
// they were, and ties stay ties.
#include "RankableValues.h"

#include <algorithm>
#include <cmath>

namespace kvt::profiling {

namespace {

constexpr int rankableBits = 40; // of the largest value once scaled; far below 2^64 and 2^53

} // namespace

double rankableScale(std::span<const double> values) {
  double largest = 0;
  for (const double value : values)
    largest = std::max(largest, value);
  if (largest <= 0)
    return 1;
  return std::ldexp(1.0, rankableBits - std::ilogb(largest));
}

std::vector<uint64_t> sortedRankable(std::span<const double> values, double scale) {
  std::vector<uint64_t> scaled(values.size());
  std::transform(values.begin(), values.end(), scaled.begin(), [scale](double value) {
    return uint64_t(std::llround(std::max(0.0, value) * scale));
  });
  std::sort(scaled.begin(), scaled.end());
  return scaled;
}

} // namespace kvt::profiling
