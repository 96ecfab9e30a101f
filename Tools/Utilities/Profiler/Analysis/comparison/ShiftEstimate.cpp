// Order statistics of the n x m differences without listing them: for a candidate c, one merge of
// the two sorted samples counts the differences at or below c and finds the nearest differences on
// either side of it. A search on c, by interpolation on the counts with bisection as a fallback,
// then lands on the wanted difference in a handful of merges. Differences of 64-bit values need
// 65 bits, hence the wide integers.
#include "ShiftEstimate.h"

#include "NormalQuantile.h"

#include <algorithm>
#include <cmath>

namespace kvt::profiling {

namespace {

__extension__ using Wide = __int128;

struct Probe {
  uint64_t atOrBelow = 0; // differences <= c
  Wide below = 0;         // the largest difference <= c, when atOrBelow > 0
  Wide above = 0;         // the smallest difference > c, when some difference is above c
};

class Differences {
public:
  Differences(std::span<const uint64_t> base, std::span<const uint64_t> next)
      : base(base), next(next) {}

  uint64_t size() const { return uint64_t(base.size()) * next.size(); }
  Wide smallest() const { return Wide(next.front()) - Wide(base.back()); }
  Wide largest() const { return Wide(next.back()) - Wide(base.front()); }

  Probe probe(Wide c) const {
    Probe result;
    bool anyBelow = false;
    bool anyAbove = false;
    size_t j = 0;
    for (const uint64_t x : base) {
      const Wide limit = Wide(x) + c;
      while (j < next.size() && Wide(next[j]) <= limit)
        ++j;
      result.atOrBelow += j;
      if (j > 0) {
        const Wide d = Wide(next[j - 1]) - Wide(x);
        result.below = anyBelow ? std::max(result.below, d) : d;
        anyBelow = true;
      }
      if (j < next.size()) {
        const Wide d = Wide(next[j]) - Wide(x);
        result.above = anyAbove ? std::min(result.above, d) : d;
        anyAbove = true;
      }
    }
    return result;
  }

  // The k-th smallest difference, k from 1 to size().
  Wide select(uint64_t k) const {
    Wide low = smallest() - 1; // fewer than k differences at or below
    Wide high = largest();     // at least k differences at or below
    uint64_t countLow = 0;
    uint64_t countHigh = size();
    bool bisect = false;
    while (high - low > 1) {
      Wide c = low + (high - low) / 2;
      if (!bisect) // where the k-th difference would be if they were spread evenly
        c = low + Wide(k - countLow) * (high - low) / Wide(countHigh - countLow);
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
  std::span<const uint64_t> base;
  std::span<const uint64_t> next;
};

// The rank of the interval's lower bound among the differences, or 0 when there is none: the
// normal approximation to the rank statistic's distribution, rounded down so that the interval
// is never narrower than the confidence allows.
uint64_t lowerBoundRank(double n, double m, double confidence) {
  const double z = normalQuantile(0.5 + confidence / 2);
  const double rank = std::floor(n * m / 2 - z * std::sqrt(n * m * (n + m + 1) / 12));
  return rank >= 1 ? uint64_t(rank) : 0;
}

} // namespace

ShiftEstimate estimateShift(std::span<const uint64_t> sortedBase,
                            std::span<const uint64_t> sortedNew, double confidence) {
  const Differences differences(sortedBase, sortedNew);
  const uint64_t count = differences.size();
  ShiftEstimate estimate;
  const uint64_t middle = (count + 1) / 2;
  const Wide lowerMedian = differences.select(middle);
  const Wide upperMedian = count % 2 ? lowerMedian : differences.selectNext(middle, lowerMedian);
  estimate.units = (double(lowerMedian) + double(upperMedian)) / 2;
  const uint64_t rank =
      lowerBoundRank(double(sortedBase.size()), double(sortedNew.size()), confidence);
  // The middle ranks that the interval or else the quartiles span, and the share between them.
  uint64_t spreadRank = std::max<uint64_t>(1, (count + 3) / 4);
  if (rank > 0) {
    estimate.interval =
        Interval{double(differences.select(rank)), double(differences.select(count + 1 - rank))};
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

double samplesForWidth(double spread, double width, double confidence) {
  const double z = normalQuantile(0.5 + confidence / 2);
  const double share = width / spread; // of the differences, which the interval may cover
  // 12 share^2 n^2 / 4 = z^2 (2n + 1), solved for n
  const double a = 3 * share * share;
  return (2 * z * z + std::sqrt(4 * z * z * z * z + 4 * a * z * z)) / (2 * a);
}

uint64_t smallestBoundedSample(double confidence) {
  uint64_t n = 1;
  while (lowerBoundRank(double(n), double(n), confidence) == 0)
    ++n;
  return n;
}

} // namespace kvt::profiling
