// Run values as the rank test and the shift estimate take them: whole numbers, sorted.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace kvt::profiling {

// The power of two that scales the largest of values to between 2^40 and 2^41, so that a mean
// or a value divided by a run-wide factor keeps its fraction as a whole number, and values near
// 2^64 fit. Values must be 0 or more; 1 when none is above 0.
double rankableScale(std::span<const double> values);

// Each value times scale, rounded, sorted ascending. Ranks and order statistics do not change
// with the scale: a shift of these values divided by scale is a shift of the values.
std::vector<uint64_t> sortedRankable(std::span<const double> values, double scale);

} // namespace kvt::profiling
