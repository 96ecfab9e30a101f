// Both runs move along one path, its position p: while p is below the larger run, the smaller
// run has p executions and the larger keeps its own; past it, both have p. Each condition holds
// from some position on, so the answer is the largest of their first positions.
#include "NeededExecutions.h"

#include "MannWhitney.h"

#include <algorithm>
#include <cmath>

namespace kvt::profiling {

namespace {

constexpr double maxPosition = 1e15; // executions per run beyond any run anyone would make

struct Path {
  uint64_t small = 0;
  uint64_t large = 0;

  // The first position at which (n + m + 1) / (n m) <= limit.
  double firstWithin(double limit) const {
    const double l = double(large);
    if (limit * l > 1) {
      const double x = (l + 1) / (limit * l - 1); // the smaller run at the larger's size
      if (x <= l)
        return std::ceil(x);
    }
    return std::ceil((1 + std::sqrt(1 + limit)) / limit); // both alike
  }

  // The first position, from start, at which an interval at z exists for untied values.
  uint64_t firstBounded(uint64_t start, double z) const {
    const double confidence = 1 - std::erfc(z / std::sqrt(2.0));
    for (uint64_t p = start;; ++p)
      if (RankSumNull::hasInterval(std::max(p, large), p, confidence))
        return p;
  }
};

} // namespace

std::optional<NeededExecutions> neededExecutions(const ShiftEstimate& shift, uint64_t baseCount,
                                                 uint64_t nextCount,
                                                 std::span<const DecisionTarget> targets) {
  const Path path{std::min(baseCount, nextCount), std::max(baseCount, nextCount)};
  double position = double(path.small + 1);
  double largestZ = 0;
  for (const DecisionTarget& target : targets) {
    if (!(target.halfWidth > 0))
      return std::nullopt; // no interval is narrower than nothing
    largestZ = std::max(largestZ, target.z);
    if (shift.spread > 0) {
      const double ratio = target.halfWidth / (target.z * shift.spread);
      position = std::max(position, path.firstWithin(12 * ratio * ratio));
    }
  }
  if (!(position <= maxPosition))
    return std::nullopt;
  const uint64_t p = path.firstBounded(uint64_t(position), largestZ);
  const uint64_t small = p;
  const uint64_t large = std::max(p, path.large);
  return baseCount < nextCount ? NeededExecutions{small, large} : NeededExecutions{large, small};
}

} // namespace kvt::profiling
