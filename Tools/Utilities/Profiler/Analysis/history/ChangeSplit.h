// Where a run of values changes: the split into runs before and after where a step fits best,
// with a rank test's p-value that accounts for every split it could have chosen.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace kvt::profiling {

struct ChangeSplit {
  size_t at = 0;     // index of the first value after the change
  double pValue = 1; // the rank-sum test's at the split, times the splits tried; at most 1
};

// The split of values (0 or more, in run order) into before and after, each at least minSide
// values long, where a step from one mean to another fits them best (least squares; the first
// such split on a tie). Its p-value is rankSumPValue's at that split times the number of splits
// it could have chosen, so a run of values without a change has a split below p with
// probability at most p, however long. None when values has fewer than 2 x minSide, minSide is
// 0, or no split has sides that differ (every value equal, say). Example: {10, 10, 11, 20, 21,
// 20} with minSide 3 splits at 3 with p-value 0.1 (one split tried).
std::optional<ChangeSplit> findChangeSplit(std::span<const double> values, size_t minSide);

} // namespace kvt::profiling
