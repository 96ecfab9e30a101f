// The two rules of the statistics that small logs express badly: which value a nearest-rank
// percentile picks, and the p-value of the rank test on small known samples.
#include "comparison/MannWhitney.h"
#include "statistics/SeriesSummary.h"

#include <gtest/gtest.h>

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

TEST(SeriesRules, RankTestGivesTheNormalApproximationsPValue) {
  struct Case {
    const char* what;
    std::vector<uint64_t> a;
    std::vector<uint64_t> b;
    double expected;
  };
  const Case cases[] = {
      {"separated triples: U = 0, z = 1.746", {1, 2, 3}, {4, 5, 6}, 0.0808556},
      {"separated tens",
       {1, 2, 3, 4, 5, 6, 7, 8, 9, 10},
       {11, 12, 13, 14, 15, 16, 17, 18, 19, 20},
       0.000182672},
      {"overlapping fives, 30 % apart",
       {800, 900, 1000, 1200, 1400},
       {1040, 1170, 1300, 1560, 1820},
       0.143672},
      {"ties across the samples shrink the variance", {1, 2, 2, 3}, {2, 3, 3, 4}, 0.172034},
      {"identical samples", {1, 2, 3, 4}, {1, 2, 3, 4}, 1},
      {"all values equal: no variance, no evidence", {5, 5, 5}, {5, 5}, 1},
      {"an empty sample", std::vector<uint64_t>(), {1, 2}, 1},
      {"single values: the continuity correction leaves z at 0", {1}, {2}, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_NEAR(mannWhitneyPValue(c.a, c.b), c.expected, c.expected * 1e-5);
    EXPECT_NEAR(mannWhitneyPValue(c.b, c.a), c.expected, c.expected * 1e-5); // two-sided
  }
}

} // namespace
} // namespace kvt::profiling
