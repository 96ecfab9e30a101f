// The two-sided Mann-Whitney U test: do two samples come from one distribution? The test and the
// interval of the shift (ShiftEstimate.h) judge U against one null distribution, so that "the
// interval excludes 0" and "the p-value is below 1 - confidence" agree.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace kvt::profiling {

// U of two sorted samples and what its null distribution depends on.
struct RankStatistic {
  double u = 0;       // pairs whose value in a is above the one in b, ties counted half
  double tieTerm = 0; // sum of t^3 - t over the runs of t equal values of both samples together
  uint64_t sizeA = 0;
  uint64_t sizeB = 0;
};

// One merge of two samples, each sorted ascending. Example: {1, 5} against {2, 5} gives
// u = 1.5 (5 > 2, and 5 = 5 counted half), tieTerm = 6.
RankStatistic rankStatistic(std::span<const uint64_t> sortedA, std::span<const uint64_t> sortedB);

// The distribution of U when both samples come from one distribution. Exact (the share of all
// orderings of the two samples) when neither is empty, there are no ties and the product of the
// sizes is at most maxExactPairs; else normal, with the variance corrected for ties and a
// continuity correction of 1/2.
class RankSumNull {
public:
  static constexpr uint64_t maxExactPairs = 4096; // 64 x 64: counts still fit 127 bits

  explicit RankSumNull(const RankStatistic& statistic);

  // Whether the distribution of a statistic is exact; then it depends on the sizes alone.
  static bool isExactFor(const RankStatistic& statistic);

  // Whether samples of sizeA and sizeB untied values have an interval at confidence, that is a
  // lowerBoundRank above 0, found without building the distribution.
  static bool hasInterval(uint64_t sizeA, uint64_t sizeB, double confidence);

  bool isExact() const { return !lowerTail.empty(); }

  // The two-sided p-value of u; 1 when a sample is empty or every value is equal. Example: U = 0
  // for samples of 3 and 3 gives 0.1 exactly (2 of the 20 orderings are that extreme).
  double pValue(double u) const;

  // The rank k of Moses' lower bound among the n x m differences (the upper one is n x m + 1 -
  // k): the largest k with P(U < k) below (1 - confidence) / 2, so that the interval excludes 0
  // exactly when pValue is below 1 - confidence; 0 when the samples are too small for any.
  uint64_t lowerBoundRank(double confidence) const;

private:
  double pairs = 0;              // n x m
  double variance = 0;           // of the normal approximation
  std::vector<double> lowerTail; // exact: P(U <= u) for u from 0 to n x m / 2
};

// The two-sided p-value of the test of two samples, each sorted ascending. Examples: {1, 2, 3}
// against {4, 5, 6} gives 0.1 (exact); tens of tied values take the normal approximation.
// Samples with ties and at most maxExactTiedValues values together (56 at the most, where the
// counts of orderings still fit the 53 bits of a double) get the exact p-value too:
// the share of the orderings of the tied values whose U lies at least as far from its mean, so
// {1, 1, 2} against {2, 3, 3} gives 0.2 (4 of the 20).
double mannWhitneyPValue(std::span<const uint64_t> sortedA, std::span<const uint64_t> sortedB,
                         uint64_t maxExactTiedValues = 0);

} // namespace kvt::profiling
