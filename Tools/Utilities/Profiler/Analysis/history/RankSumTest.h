// The two-sided rank-sum test of the runs before a change against the runs after it.
#pragma once

#include <cstddef>
#include <span>

namespace kvt::profiling {

// Runs up to which the test is exact with ties too (both sides together): a history has few
// runs, and its figures tie often; the comparison's executions are many, and its interval must
// agree with its p-value, so it counts ties exactly never.
inline constexpr size_t maxExactRankSumRuns = 50;

// The two-sided p-value that before and after come from one distribution (values in any order):
// mannWhitneyPValue's, exact with ties up to maxExactRankSumRuns values, since short histories
// need p-values the approximation misstates: 3 runs against 3 all above give 0.1 (2 of the 20
// orders), {1, 1, 2} against {2, 3, 3} 0.2. 1 when a side is empty.
double rankSumPValue(std::span<const double> before, std::span<const double> after);

} // namespace kvt::profiling
