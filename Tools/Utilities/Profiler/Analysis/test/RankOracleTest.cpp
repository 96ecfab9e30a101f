// The rank test and the shift estimate against brute force on many small seeded samples: the
// median and the interval bounds against all n x m differences listed and sorted, the exact
// p-value against a count over every split of the pooled values, and the interval's exclusion
// of 0 against the p-value, which must agree when there are no ties.
#include "comparison/MannWhitney.h"
#include "comparison/ShiftEstimate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <random>
#include <vector>

namespace kvt::profiling {
namespace {

__extension__ using Wide = __int128;

enum class Values { distinct, fewDistinct, allEqual, nearTop, bothEnds };

std::vector<uint64_t> drawSorted(std::mt19937_64& random, size_t size, Values kind,
                                 std::vector<uint64_t>& used) {
  std::vector<uint64_t> sample;
  while (sample.size() < size) {
    uint64_t value = 0;
    switch (kind) {
    case Values::distinct: // no value twice across both samples: the exact test applies
      value = random() % 1000;
      if (std::find(used.begin(), used.end(), value) != used.end())
        continue;
      used.push_back(value);
      break;
    case Values::fewDistinct:
      value = random() % 4;
      break;
    case Values::allEqual:
      value = 7;
      break;
    case Values::nearTop:
      value = UINT64_MAX - random() % 6;
      break;
    case Values::bothEnds: // differences that need 65 bits
      value = random() % 2 ? UINT64_MAX - random() % 3 : random() % 3;
      break;
    }
    sample.push_back(value);
  }
  std::sort(sample.begin(), sample.end());
  return sample;
}

// The two-sided p-value as the share of the splits of the pooled values into samples of a's
// and b's sizes whose U lies at least as far from its mean.
double permutationPValue(const std::vector<uint64_t>& a, const std::vector<uint64_t>& b) {
  std::vector<uint64_t> pooled(a);
  pooled.insert(pooled.end(), b.begin(), b.end());
  std::sort(pooled.begin(), pooled.end());
  auto uOf = [&](uint32_t inA) { // pairs of a value in a above one in b, pooled values distinct
    uint64_t u = 0;
    uint64_t bBelow = 0;
    for (size_t i = 0; i < pooled.size(); ++i)
      if (inA >> i & 1)
        u += bBelow;
      else
        ++bBelow;
    return double(u);
  };
  uint32_t observed = 0;
  for (size_t i = 0; i < pooled.size(); ++i)
    if (std::find(a.begin(), a.end(), pooled[i]) != a.end())
      observed |= 1u << i;
  const double mean = double(a.size() * b.size()) / 2;
  const double distance = std::abs(uOf(observed) - mean);
  uint64_t splits = 0;
  uint64_t asFar = 0;
  for (uint32_t mask = 0; mask < 1u << pooled.size(); ++mask) {
    if (size_t(std::popcount(mask)) != a.size())
      continue;
    ++splits;
    asFar += std::abs(uOf(mask) - mean) >= distance - 1e-9 ? 1 : 0;
  }
  return double(asFar) / double(splits);
}

TEST(RankOracle, FastEstimatesAndExactPValuesEqualBruteForce) {
  struct Case {
    const char* what;
    Values values;
    size_t maxSize; // of each sample, from 1
    double confidence;
    int samples;
  };
  const Case cases[] = {
      {"distinct values, sizes to 8: exact p", Values::distinct, 8, 0.9, 1500},
      {"distinct values, sizes to 8, 98 %", Values::distinct, 8, 0.98, 1000},
      {"distinct values, sizes to 40: search and exact tails", Values::distinct, 40, 0.98, 300},
      {"four values: ties everywhere", Values::fewDistinct, 30, 0.9, 1000},
      {"one value: every difference 0", Values::allEqual, 12, 0.5, 200},
      {"near 2^64 with ties", Values::nearTop, 20, 0.9, 500},
      {"both ends of the range", Values::bothEnds, 20, 0.8, 500},
  };
  std::mt19937_64 random(20261125);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    for (int sample = 0; sample < c.samples; ++sample) {
      std::vector<uint64_t> used;
      const auto base = drawSorted(random, 1 + random() % c.maxSize, c.values, used);
      const auto next = drawSorted(random, 1 + random() % c.maxSize, c.values, used);
      std::vector<Wide> differences;
      for (const uint64_t x : base)
        for (const uint64_t y : next)
          differences.push_back(Wide(y) - Wide(x));
      std::sort(differences.begin(), differences.end());
      const size_t count = differences.size();
      const RankStatistic statistic = rankStatistic(base, next);
      const RankSumNull null(statistic);
      const ShiftEstimate estimate = estimateShift(base, next, c.confidence);
      ASSERT_EQ(estimate.units,
                (double(differences[(count - 1) / 2]) + double(differences[count / 2])) / 2)
          << base.size() << " x " << next.size();
      const uint64_t rank = null.lowerBoundRank(c.confidence);
      ASSERT_EQ(estimate.interval.has_value(), rank > 0);
      if (rank > 0) {
        ASSERT_EQ(estimate.interval->low, double(differences[rank - 1]));
        ASSERT_EQ(estimate.interval->high, double(differences[count - rank]));
      }
      const double p = null.pValue(statistic.u);
      std::vector<uint64_t> pooled(base);
      pooled.insert(pooled.end(), next.begin(), next.end());
      std::sort(pooled.begin(), pooled.end());
      const bool untied = std::adjacent_find(pooled.begin(), pooled.end()) == pooled.end();
      ASSERT_EQ(null.isExact(), untied && count <= RankSumNull::maxExactPairs);
      if (untied) {
        ASSERT_EQ(RankSumNull::hasInterval(base.size(), next.size(), c.confidence), rank > 0);
      }
      if (!null.isExact())
        continue;
      if (base.size() + next.size() <= 16) {
        ASSERT_NEAR(p, permutationPValue(base, next), 1e-12) << base.size() << " x " << next.size();
      }
      const bool excludesZero =
          estimate.interval && (estimate.interval->low > 0 || estimate.interval->high < 0);
      ASSERT_EQ(excludesZero, p < 1 - c.confidence) << "p " << p;
    }
  }
}

} // namespace
} // namespace kvt::profiling
