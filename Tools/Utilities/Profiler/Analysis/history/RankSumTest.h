// The two-sided rank-sum test of the runs before a change against the runs after it.
#pragma once

#include <cstddef>
#include <span>

namespace kvt::profiling {

// Runs up to which the test counts the exact distribution of its statistic (both sides
// together); beyond, the normal approximation of the rank test serves.
inline constexpr size_t maxExactRankSumRuns = 50;

// The two-sided p-value that before and after come from one distribution (values 0 or more, in
// any order). Up to maxExactRankSumRuns values it is exact, from the count of the orders of the
// values whose statistic lies as far from its mean (a tie counts as half a pair), since short
// histories need p-values smaller than the approximation can give: 3 runs against 3 all above
// give 0.1 (2 of the 20 orders). Beyond, mannWhitneyPValue's. 1 when a side is empty.
double rankSumPValue(std::span<const double> before, std::span<const double> after);

} // namespace kvt::profiling
