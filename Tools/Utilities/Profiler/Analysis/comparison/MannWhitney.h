// The two-sided Mann-Whitney U test: do two samples come from one distribution?
#pragma once

#include <cstdint>
#include <span>

namespace kvt::profiling {

// The two-sided p-value of the Mann-Whitney U test of two samples, each sorted ascending, by the
// normal approximation with tie correction and continuity correction. 1 when either sample is
// empty or all values are equal (no evidence either way). Example: {1, 2, 3} against
// {4, 5, 6} gives 0.0809 (U = 0, z = 1.746).
double mannWhitneyPValue(std::span<const uint64_t> sortedA, std::span<const uint64_t> sortedB);

} // namespace kvt::profiling
