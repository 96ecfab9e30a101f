// How many executions per run would let a comparison decide a series it left unsure: the
// interval of the shift narrows as the runs grow, and the question is when it has narrowed
// enough, for differences as spread as they are now.
#pragma once

#include "ShiftEstimate.h"

#include <cstdint>
#include <optional>
#include <span>

namespace kvt::profiling {

// Total executions per run at which a row would decide (not how many more).
struct NeededExecutions {
  uint64_t base = 0;
  uint64_t next = 0;
};

// An interval the decision needs: at most halfWidth either side of the estimate, in the
// samples' unit, at the normal quantile z.
struct DecisionTarget {
  double halfWidth = 0;
  double z = 0;
};

// The fewest executions in total at which every target holds, more than the runs have: the
// smaller run grows first (a balanced pair gives the narrowest interval for its total), then
// both alike; never fewer than the interval needs to exist. The interval's half width at n and m
// values is z x spread x sqrt((n + m + 1) / (12 n m)). None when a target is not above 0 or the
// count is beyond reason. Example: spread 100, one target {10, 2.326}, runs of 5 and 5: 91 each.
std::optional<NeededExecutions> neededExecutions(const ShiftEstimate& shift, uint64_t baseCount,
                                                 uint64_t nextCount,
                                                 std::span<const DecisionTarget> targets);

} // namespace kvt::profiling
