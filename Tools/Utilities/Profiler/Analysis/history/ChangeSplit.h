// Where a run of values changes: the split into runs before and after, or the stretch of runs
// that changed and came back, where a step fits best, with a rank test's p-value that accounts
// for every candidate it could have chosen.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace kvt::profiling {

struct ChangeSplit {
  size_t at = 0; // index of the first value after the change
  // For a change that came back: index of the first value after the stretch that changed.
  std::optional<size_t> back;
  double pValue = 1; // the rank-sum test's, for the searches that could have found it; at most 1
};

// The change in values (0 or more, in run order) that a step from one mean to another fits
// best (least squares; the first on a tie): a split into before and after, or a stretch of
// values unlike those before and after it (a change that came back), each part at least minSide
// values long. Its p-value is rankSumPValue's of the two parts (the stretch against the rest)
// times the candidates its search tried, divided by that search's share of the error rate (0.8
// for splits, 0.2 for stretches); the smaller of the two searches' wins. So a run of values
// without a change has a change below p with probability at most p, however long. None when
// values has fewer than 2 x minSide, minSide is 0, or no part differs from the rest (every value
// equal, say). Example: {10, 10, 11, 20, 21, 20} with minSide 3 splits at 3 with p-value 0.125
// (one split tried, 0.1 / 0.8; no stretch fits).
std::optional<ChangeSplit> findChangeSplit(std::span<const double> values, size_t minSide);

} // namespace kvt::profiling
