// The rank statistic by one merge of the two sorted samples: each run of equal values gets the
// mean of its ranks, and its size feeds the tie correction of the variance. The exact
// distribution counts the orderings of n and m untied values by their U: the coefficients of
// the Gaussian binomial [n + m choose m], built one factor (1 - q^(n + i)) / (1 - q^i) at a time
// in whole numbers, so that the subtractions lose nothing; U is symmetric, so half of them do.
#include "MannWhitney.h"

#include "NormalQuantile.h"

#include <algorithm>
#include <cmath>

namespace kvt::profiling {

namespace {

__extension__ using Wide = __int128;

// P(U <= u) for u from 0 to n x m / 2, for samples of sizeA and sizeB untied values.
std::vector<double> exactLowerTail(uint64_t sizeA, uint64_t sizeB) {
  const uint64_t small = std::min(sizeA, sizeB);
  const uint64_t large = std::max(sizeA, sizeB);
  const uint64_t half = sizeA * sizeB / 2;
  std::vector<Wide> count(half + 1);
  count[0] = 1;
  for (uint64_t i = 1; i <= small; ++i) { // count becomes that of [large + i choose i]
    for (uint64_t u = half + 1; u-- > large + i;)
      count[u] -= count[u - (large + i)];
    for (uint64_t u = i; u <= half; ++u)
      count[u] += count[u - i];
  }
  Wide total = 0;
  for (const Wide c : count)
    total += 2 * c;
  if ((sizeA * sizeB) % 2 == 0)
    total -= count[half]; // the middle value is its own mirror
  std::vector<double> tail(half + 1);
  Wide running = 0;
  for (uint64_t u = 0; u <= half; ++u) {
    running += count[u];
    tail[u] = double(running) / double(total);
  }
  return tail;
}

// n x m at most maxExactPairs, without forming a product that could wrap around.
bool fitsExactPairs(uint64_t sizeA, uint64_t sizeB) {
  return sizeA > 0 && sizeB > 0 && sizeA <= RankSumNull::maxExactPairs / sizeB;
}

// The rank of Moses' lower bound by the normal approximation: U at or below k - 1 gives a
// p-value below 1 - confidence, the continuity correction included.
uint64_t normalLowerBoundRank(double pairs, double variance, double confidence) {
  const double z = normalQuantile(1 - (1 - confidence) / 2);
  const double rank = std::ceil(pairs / 2 - 0.5 - z * std::sqrt(std::max(0.0, variance)));
  if (rank < 1)
    return 0;
  // The runs that needed-executions imagines can hold more pairs than 64 bits count.
  return rank < 0x1p64 ? uint64_t(rank) : UINT64_MAX;
}

// The exact two-sided p-value of u with ties: over the runs of equal values in ascending order,
// the number of orderings that put j of a run's t values in a, by the count so far in a and by
// 2 U (whole), each a in the run above the b values below it and level, counted half, with t - j.
// The counts stay below C(n + m, n), whole and exact in a double for the sizes this serves.
double exactTiedPValue(std::span<const uint64_t> sortedA, std::span<const uint64_t> sortedB,
                       double u) {
  std::vector<size_t> runs;
  std::vector<uint64_t> pooled(sortedA.begin(), sortedA.end());
  pooled.insert(pooled.end(), sortedB.begin(), sortedB.end());
  std::sort(pooled.begin(), pooled.end());
  for (size_t i = 0; i < pooled.size(); ++i) {
    if (i == 0 || pooled[i] != pooled[i - 1])
      runs.push_back(0);
    ++runs.back();
  }
  const size_t sizeA = sortedA.size();
  const size_t sizeB = sortedB.size();
  const size_t twiceMaxU = 2 * sizeA * sizeB;
  const size_t width = twiceMaxU + 1;
  std::vector<double> count((sizeA + 1) * width, 0.0); // [k * width + 2 U]
  std::vector<double> next(count.size());
  count[0] = 1;
  size_t below = 0;
  for (const size_t t : runs) {
    std::fill(next.begin(), next.end(), 0.0);
    for (size_t k = 0; k <= std::min(sizeA, below); ++k) {
      if (below - k > sizeB)
        continue;                                 // more b values below than b has
      const size_t reached = 2 * k * (below - k); // 2 U so far is at most this
      double ways = 1;                            // C(t, j)
      for (size_t j = 0; j <= t && k + j <= sizeA; ++j) {
        if (below + t - k - j <= sizeB) {
          const size_t added = j * 2 * (below - k) + j * (t - j);
          double* to = next.data() + (k + j) * width + added;
          const double* from = count.data() + k * width;
          for (size_t twiceU = 0; twiceU <= reached; ++twiceU)
            to[twiceU] += ways * from[twiceU];
        }
        ways = ways * double(t - j) / double(j + 1);
      }
    }
    std::swap(count, next);
    below += t;
  }
  const double twiceMean = double(twiceMaxU) / 2;
  const double observed = std::abs(2 * u - twiceMean);
  double total = 0;
  double asFar = 0;
  for (size_t twiceU = 0; twiceU <= twiceMaxU; ++twiceU) {
    const double ways = count[sizeA * width + twiceU];
    total += ways;
    if (std::abs(double(twiceU) - twiceMean) >= observed)
      asFar += ways;
  }
  return std::min(1.0, asFar / total);
}

double untiedVariance(double sizeA, double sizeB) {
  return sizeA * sizeB * (sizeA + sizeB + 1) / 12;
}

} // namespace

RankStatistic rankStatistic(std::span<const uint64_t> sortedA, std::span<const uint64_t> sortedB) {
  RankStatistic statistic;
  statistic.sizeA = sortedA.size();
  statistic.sizeB = sortedB.size();
  double rankSumA = 0;
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
    statistic.tieTerm += tied * tied * tied - tied;
    nextRank += tied;
  }
  const double nA = double(sortedA.size());
  statistic.u = rankSumA - nA * (nA + 1) / 2;
  return statistic;
}

RankSumNull::RankSumNull(const RankStatistic& statistic) {
  const double nA = double(statistic.sizeA);
  const double nB = double(statistic.sizeB);
  pairs = nA * nB;
  if (pairs == 0)
    return;
  const double n = nA + nB;
  variance = pairs / 12 * ((n + 1) - statistic.tieTerm / (n * (n - 1)));
  if (isExactFor(statistic))
    lowerTail = exactLowerTail(statistic.sizeA, statistic.sizeB);
}

bool RankSumNull::isExactFor(const RankStatistic& statistic) {
  return statistic.tieTerm == 0 && fitsExactPairs(statistic.sizeA, statistic.sizeB);
}

bool RankSumNull::hasInterval(uint64_t sizeA, uint64_t sizeB, double confidence) {
  if (sizeA == 0 || sizeB == 0)
    return false;
  if (!fitsExactPairs(sizeA, sizeB))
    return normalLowerBoundRank(double(sizeA) * double(sizeB),
                                untiedVariance(double(sizeA), double(sizeB)), confidence) > 0;
  // Exactly: U = 0, one ordering of C(n + m, n), must be rarer than the tail.
  double orderings = 1;
  for (uint64_t i = 1; i <= sizeB; ++i)
    orderings = orderings * double(sizeA + i) / double(i);
  return 1 / orderings < (1 - confidence) / 2;
}

double RankSumNull::pValue(double u) const {
  if (isExact())
    return std::min(1.0, 2 * lowerTail[size_t(std::min(u, pairs - u))]);
  if (variance <= 0)
    return 1;
  const double z = std::max(0.0, std::abs(u - pairs / 2) - 0.5) / std::sqrt(variance);
  return std::min(1.0, std::erfc(z / std::sqrt(2.0)));
}

uint64_t RankSumNull::lowerBoundRank(double confidence) const {
  const double tail = (1 - confidence) / 2;
  if (isExact())
    return uint64_t(std::partition_point(lowerTail.begin(), lowerTail.end(),
                                         [tail](double p) { return p < tail; }) -
                    lowerTail.begin());
  return pairs == 0 ? 0 : normalLowerBoundRank(pairs, variance, confidence);
}

double mannWhitneyPValue(std::span<const uint64_t> sortedA, std::span<const uint64_t> sortedB,
                         uint64_t maxExactTiedValues) {
  const RankStatistic statistic = rankStatistic(sortedA, sortedB);
  if (statistic.tieTerm > 0 && statistic.sizeA > 0 && statistic.sizeB > 0 &&
      statistic.sizeA + statistic.sizeB <= maxExactTiedValues)
    return exactTiedPValue(sortedA, sortedB, statistic.u);
  return RankSumNull(statistic).pValue(statistic.u);
}

} // namespace kvt::profiling
