// The rank test by one merge of the two sorted samples: each run of equal values gets the mean
// of its ranks, and its size feeds the tie correction of the variance.
#include "MannWhitney.h"

#include <algorithm>
#include <cmath>

namespace kvt::profiling {

double mannWhitneyPValue(std::span<const uint64_t> sortedA, std::span<const uint64_t> sortedB) {
  const double nA = double(sortedA.size());
  const double nB = double(sortedB.size());
  if (sortedA.empty() || sortedB.empty())
    return 1;
  double rankSumA = 0;
  double tieTerm = 0; // sum of t^3 - t over the runs of t equal values
  size_t a = 0;
  size_t b = 0;
  double nextRank = 1;
  while (a < sortedA.size() || b < sortedB.size()) {
    const uint64_t value = b == sortedB.size() || (a < sortedA.size() && sortedA[a] <= sortedB[b])
                               ? sortedA[a]
                               : sortedB[b];
    size_t inA = 0;
    size_t inB = 0;
    for (; a < sortedA.size() && sortedA[a] == value; ++a)
      ++inA;
    for (; b < sortedB.size() && sortedB[b] == value; ++b)
      ++inB;
    const double tied = double(inA + inB);
    rankSumA += double(inA) * (nextRank + (tied - 1) / 2);
    tieTerm += tied * tied * tied - tied;
    nextRank += tied;
  }
  const double n = nA + nB;
  const double u = rankSumA - nA * (nA + 1) / 2;
  const double mean = nA * nB / 2;
  const double variance = nA * nB / 12 * ((n + 1) - tieTerm / (n * (n - 1)));
  if (variance <= 0)
    return 1;
  const double z = std::max(0.0, std::abs(u - mean) - 0.5) / std::sqrt(variance);
  return std::min(1.0, std::erfc(z / std::sqrt(2.0)));
}

} // namespace kvt::profiling
