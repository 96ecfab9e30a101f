// The shift between two samples: the Hodges-Lehmann estimate (the median of all differences
// new - base) with its distribution-free confidence interval, found without listing the
// differences.
#pragma once

#include "MannWhitney.h"

#include <cstdint>
#include <optional>
#include <span>

namespace kvt::profiling {

struct Interval {
  double low = 0;
  double high = 0;
};

struct ShiftEstimate {
  double units = 0;                 // the median difference, in the samples' unit
  std::optional<Interval> interval; // none when the samples are too small for the confidence
  // How far apart the differences lie around their median, in units per unit of probability:
  // the differences' middle share p spans about p x spread units. From the interval when it
  // covers at most the middle half of them, else from their quartiles.
  double spread = 0;
};

// The estimate for two sorted, non-empty samples. The interval holds the true shift with
// probability confidence (0 to 1): the order statistics k and N + 1 - k of the N = n x m
// differences, k from null, the rank test's distribution for these samples (Moses). Example:
// {1, 2, 3} against {11, 12, 13} is 10; its 0.98 interval needs more values and is none.
ShiftEstimate estimateShift(std::span<const uint64_t> sortedBase,
                            std::span<const uint64_t> sortedNew, double confidence,
                            const RankSumNull& null);

// The same, with the rank test's distribution found from the samples.
ShiftEstimate estimateShift(std::span<const uint64_t> sortedBase,
                            std::span<const uint64_t> sortedNew, double confidence);

} // namespace kvt::profiling
