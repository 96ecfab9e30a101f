// The rules of the statistics that small logs express badly: which value a nearest-rank
// percentile picks, the p-value of the rank test, the shift estimate with its interval and the
// adjustments for many series, on small known samples.
#include "comparison/MannWhitney.h"
#include "comparison/MultipleTesting.h"
#include "comparison/NeededExecutions.h"
#include "comparison/ShiftEstimate.h"
#include "statistics/SeriesSummary.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace kvt::profiling {
namespace {

TEST(SeriesRules, NearestRankPicksTheValueAtRankCeilPTimesN) {
  struct Case {
    const char* what;
    std::vector<uint64_t> sorted;
    uint32_t percent;
    uint64_t expected;
  };
  const Case cases[] = {
      {"one value is every percentile", {7}, 99, 7},
      {"n=2, p50 is rank 1, not an interpolation", {10, 20}, 50, 10},
      {"n=2, p90 is rank 2", {10, 20}, 90, 20},
      {"n=4, p50 is rank 2", {1, 2, 3, 4}, 50, 2},
      {"n=10, p90 is rank 9", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, 90, 9},
      {"n=10, p99 rounds up to rank 10", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, 99, 10},
      {"ties count one rank each", {1, 3, 3, 3, 9}, 50, 3},
      {"huge values are kept whole", {18446744073709551615u}, 50, 18446744073709551615u},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(nearestRank(c.sorted, c.percent), c.expected);
  }
}

// Small untied samples take the exact distribution, which RankOracleTest checks by brute force.
TEST(SeriesRules, RankTestWithTiesOrManyValuesGivesTheNormalApproximationsPValue) {
  struct Case {
    const char* what;
    std::vector<uint64_t> a;
    std::vector<uint64_t> b;
    double expected;
  };
  std::vector<uint64_t> low(65);
  std::vector<uint64_t> high(65);
  for (uint64_t i = 0; i < 65; ++i) {
    low[i] = i;
    high[i] = 100 + i;
  }
  const Case cases[] = {
      {"ties across the samples shrink the variance", {1, 2, 2, 3}, {2, 3, 3, 4}, 0.172034},
      {"65 x 65 untied values are too many to count: z = 9.834", low, high, 8.0265724e-23},
      {"identical samples", {1, 2, 3, 4}, {1, 2, 3, 4}, 1},
      {"all values equal: no variance, no evidence", {5, 5, 5}, {5, 5}, 1},
      {"an empty sample", std::vector<uint64_t>(), {1, 2}, 1},
      {"single values: one of two orderings is as extreme", {1}, {2}, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_NEAR(mannWhitneyPValue(c.a, c.b), c.expected, c.expected * 1e-5);
    EXPECT_NEAR(mannWhitneyPValue(c.b, c.a), c.expected, c.expected * 1e-5); // two-sided
  }
}

TEST(SeriesRules, ShiftIsTheMedianDifferenceWithOrderStatisticBounds) {
  struct Case {
    const char* what;
    std::vector<uint64_t> base;
    std::vector<uint64_t> next;
    double confidence;
    double shift;
    std::optional<Interval> interval;
  };
  const uint64_t top = UINT64_MAX;
  const std::vector<uint64_t> tens = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  const Case cases[] = {
      {"one value each", {5}, {8}, 0.98, 3, std::nullopt},
      {"an odd count of differences is its middle one",
       {1, 2, 3},
       {11, 12, 13},
       0.5,
       10,
       Interval{9, 11}},
      {"an even count averages the middle two", {1, 2}, {4, 6}, 0.5, 3.5, Interval{2, 5}},
      {"ties are differences like any others", {5, 5, 5}, {5, 5, 5}, 0.8, 0, Interval{0, 0}},
      // n = m = 10: the lower bound is difference 19 of 100, where P(U < k) reaches 1 %
      {"tens against tens moved by 10",
       tens,
       {11, 12, 13, 14, 15, 16, 17, 18, 19, 20},
       0.98,
       10,
       Interval{6, 14}},
      {"a negative shift",
       {11, 12, 13, 14, 15, 16, 17, 18, 19, 20},
       tens,
       0.98,
       -10,
       Interval{-14, -6}},
      {"differences of the largest values need 65 bits",
       {0, 1, 2},
       {top - 2, top - 1, top},
       0.5,
       double(top),
       Interval{double(top - 1), double(top) + 1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ShiftEstimate estimate = estimateShift(c.base, c.next, c.confidence);
    EXPECT_DOUBLE_EQ(estimate.units, c.shift);
    ASSERT_EQ(estimate.interval.has_value(), c.interval.has_value());
    if (c.interval) {
      EXPECT_DOUBLE_EQ(estimate.interval->low, c.interval->low);
      EXPECT_DOUBLE_EQ(estimate.interval->high, c.interval->high);
    }
  }
}

TEST(SeriesRules, AdjustmentsForManySeriesKeepTheOrderOfTheirPValues) {
  struct Case {
    const char* what;
    std::vector<double> p;
    std::vector<double> holm;
    std::vector<double> q;
  };
  const Case cases[] = {
      {"one test is not adjusted", {0.02}, {0.02}, {0.02}},
      {"Holm multiplies by the tests left, BH divides by the rank",
       {0.01, 0.04, 0.03},
       {0.03, 0.06, 0.06},
       {0.03, 0.04, 0.04}},
      {"adjusted values never exceed 1", {0.5, 0.9}, {1, 1}, {0.9, 0.9}},
      {"equal p-values get equal adjustments", {0.01, 0.01}, {0.02, 0.02}, {0.01, 0.01}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::vector<double> holm = holmAdjusted(c.p);
    const std::vector<double> q = benjaminiHochbergQValues(c.p);
    for (size_t i = 0; i < c.p.size(); ++i) {
      EXPECT_DOUBLE_EQ(holm[i], c.holm[i]);
      EXPECT_DOUBLE_EQ(q[i], c.q[i]);
    }
  }
}

// The half width at n and m values is z x spread x sqrt((n + m + 1) / (12 n m)); with spread 100
// and z 2.326, a half width of 10 needs (n + m + 1) / (n m) <= 0.02218.
TEST(SeriesRules, NeededExecutionsGrowTheSmallerRunFirst) {
  struct Case {
    const char* what;
    double spread;
    uint64_t base;
    uint64_t next;
    std::vector<DecisionTarget> targets;
    std::optional<NeededExecutions> expected;
  };
  const Case cases[] = {
      {"equal runs grow alike: 183 / 91^2 <= 0.02218", 100, 5, 5, {{10, 2.326}}, {{91, 91}}},
      {"the smaller run alone reaches it: 260 / (200 x 59)",
       100,
       5,
       200,
       {{10, 2.326}},
       {{59, 200}}},
      {"the smaller run passes the larger, then both grow", 100, 50, 5, {{10, 2.326}}, {{91, 91}}},
      {"the narrowest target decides", 100, 5, 5, {{20, 2.326}, {10, 2.326}}, {{91, 91}}},
      {"no spread: the first sizes with an interval, C(10, 5) > 2 / 0.02",
       0,
       2,
       2,
       {{10, 2.326}},
       {{5, 5}}},
      {"a band of width 0 is never reached", 100, 5, 5, {{0, 2.326}}, std::nullopt},
      // Sizes whose product wraps around 64 bits once took the exact path and never returned.
      {"runs of 2^40 each: one more each",
       0,
       uint64_t(1) << 40,
       uint64_t(1) << 40,
       {{10, 2.326}},
       {{(uint64_t(1) << 40) + 1, (uint64_t(1) << 40) + 1}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ShiftEstimate shift;
    shift.spread = c.spread;
    const std::optional<NeededExecutions> needed =
        neededExecutions(shift, c.base, c.next, c.targets);
    ASSERT_EQ(needed.has_value(), c.expected.has_value());
    if (needed) {
      EXPECT_EQ(needed->base, c.expected->base);
      EXPECT_EQ(needed->next, c.expected->next);
    }
  }
}

} // namespace
} // namespace kvt::profiling
