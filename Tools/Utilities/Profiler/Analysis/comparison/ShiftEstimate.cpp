// Order statistics of the n x m differences without listing them: for a candidate c, one merge of
// the two sorted samples counts the differences at or below c and finds the nearest differences on
// either side of it. A search on c, by interpolation on the counts with bisection as a fallback,
// then lands on the wanted difference in a handful of merges. The merges walk runs of equal
// values, since timings in whole units repeat: 36,000 values often hold a few thousand distinct
// ones. Differences of 64-bit values need 65 bits, hence the wide integers.
#include "ShiftEstimate.h"

#include "NormalQuantile.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace kvt::profiling {

namespace {

__extension__ using Wide = __int128;

// A sorted sample as its distinct values, each with the number of values at or below it.
struct Runs {
  std::vector<uint64_t> values;
  std::vector<uint64_t> atOrBelow;

  explicit Runs(std::span<const uint64_t> sorted) {
    for (size_t i = 0; i < sorted.size(); ++i) {
      if (i == 0 || sorted[i] != sorted[i - 1]) {
        values.push_back(sorted[i]);
        atOrBelow.push_back(0);
      }
      ++atOrBelow.back();
    }
    for (size_t i = 1; i < atOrBelow.size(); ++i)
      atOrBelow[i] += atOrBelow[i - 1];
  }

  uint64_t countOf(size_t run) const { return atOrBelow[run] - (run ? atOrBelow[run - 1] : 0); }
};

struct Probe {
  uint64_t atOrBelow = 0; // differences <= c
  Wide below = 0;         // the largest difference <= c, when atOrBelow > 0
  Wide above = 0;         // the smallest difference > c, when some difference is above c
};

class Differences {
public:
  Differences(std::span<const uint64_t> base, std::span<const uint64_t> next)
      : base(base), next(next) {}

  uint64_t size() const { return base.atOrBelow.back() * next.atOrBelow.back(); }
  Wide smallest() const { return Wide(next.values.front()) - Wide(base.values.back()); }
  Wide largest() const { return Wide(next.values.back()) - Wide(base.values.front()); }

  Probe probe(Wide c) const {
    Probe result;
    bool anyBelow = false;
    bool anyAbove = false;
    size_t j = 0; // runs of next at or below the current base value + c
    for (size_t i = 0; i < base.values.size(); ++i) {
      const Wide x = Wide(base.values[i]);
      while (j < next.values.size() && Wide(next.values[j]) <= x + c)
        ++j;
      if (j > 0) {
        result.atOrBelow += base.countOf(i) * next.atOrBelow[j - 1];
        const Wide d = Wide(next.values[j - 1]) - x;
        result.below = anyBelow ? std::max(result.below, d) : d;
        anyBelow = true;
      }
      if (j < next.values.size()) {
        const Wide d = Wide(next.values[j]) - x;
        result.above = anyAbove ? std::min(result.above, d) : d;
        anyAbove = true;
      }
    }
    return result;
  }

  // The k-th smallest difference, k from 1 to size(); the search starts at guess when it has one.
  Wide select(uint64_t k, std::optional<Wide> guess = std::nullopt) const {
    Wide low = smallest() - 1; // fewer than k differences at or below
    Wide high = largest();     // at least k differences at or below
    uint64_t countLow = 0;
    uint64_t countHigh = size();
    bool bisect = false;
    while (high - low > 1) {
      Wide c = low + (high - low) / 2;
      if (guess) // where a rough estimate puts it
        c = *guess;
      else if (!bisect) // where the k-th difference would be if they were spread evenly
        c = low + Wide(k - countLow) * (high - low) / Wide(countHigh - countLow);
      guess.reset();
      c = std::clamp(c, low + 1, high - 1);
      const Wide before = high - low;
      const Probe p = probe(c);
      if (p.atOrBelow >= k) {
        high = p.below;
        countHigh = p.atOrBelow;
      } else {
        low = p.above - 1;
        countLow = p.atOrBelow;
      }
      bisect = (high - low) * 2 > before; // interpolation that does not halve gives way once
    }
    return high;
  }

  // The difference just above the k-th smallest, k below size().
  Wide selectNext(uint64_t k, Wide kth) const {
    const Probe p = probe(kth);
    return p.atOrBelow > k ? kth : p.above;
  }

private:
  Runs base;
  Runs next;
};

// The interval's half width if the samples were normal, with their spread from their quartiles:
// a first guess that saves the search most of its steps.
Wide guessHalfWidth(std::span<const uint64_t> base, std::span<const uint64_t> next,
                    double confidence) {
  auto variance = [](std::span<const uint64_t> sorted) {
    const double quartiles = double(sorted[sorted.size() * 3 / 4] - sorted[sorted.size() / 4]);
    return quartiles * quartiles / (1.349 * 1.349);
  };
  // The median difference's variance is pi / 3 times the difference of means'.
  const double halfWidth =
      normalQuantile(0.5 + confidence / 2) *
      std::sqrt(std::acos(-1.0) / 3 *
                (variance(base) / double(base.size()) + variance(next) / double(next.size())));
  return Wide(std::min(halfWidth, 1e30));
}

} // namespace

ShiftEstimate estimateShift(std::span<const uint64_t> sortedBase,
                            std::span<const uint64_t> sortedNew, double confidence,
                            const RankSumNull& null) {
  const Differences differences(sortedBase, sortedNew);
  const uint64_t count = differences.size();
  ShiftEstimate estimate;
  const uint64_t middle = (count + 1) / 2;
  // The difference of the medians is close to the median difference.
  const Wide lowerMedian = differences.select(middle, Wide(sortedNew[sortedNew.size() / 2]) -
                                                          Wide(sortedBase[sortedBase.size() / 2]));
  const Wide upperMedian = count % 2 ? lowerMedian : differences.selectNext(middle, lowerMedian);
  estimate.units = (double(lowerMedian) + double(upperMedian)) / 2;
  const uint64_t rank = null.lowerBoundRank(confidence);
  // The middle ranks that the interval or else the quartiles span, and the share between them.
  uint64_t spreadRank = std::max<uint64_t>(1, (count + 3) / 4);
  if (rank > 0) {
    const Wide low =
        differences.select(rank, lowerMedian - guessHalfWidth(sortedBase, sortedNew, confidence));
    // The differences spread about as far above their median as below it.
    const Wide high = differences.select(count + 1 - rank, 2 * lowerMedian - low);
    estimate.interval = Interval{double(low), double(high)};
    spreadRank = std::max(spreadRank, rank);
  }
  const double share = double(count + 1 - 2 * spreadRank) / double(count);
  if (share > 0) {
    const double width = spreadRank == rank ? estimate.interval->high - estimate.interval->low
                                            : double(differences.select(count + 1 - spreadRank)) -
                                                  double(differences.select(spreadRank));
    estimate.spread = width / share;
  }
  return estimate;
}

ShiftEstimate estimateShift(std::span<const uint64_t> sortedBase,
                            std::span<const uint64_t> sortedNew, double confidence) {
  return estimateShift(sortedBase, sortedNew, confidence,
                       RankSumNull(rankStatistic(sortedBase, sortedNew)));
}

} // namespace kvt::profiling
