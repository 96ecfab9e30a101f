// The rules of a history that a handful of logs express badly: the exact rank-sum p-value
// against every order of small samples, with ties and without, where a split is placed and when
// there is none, and the run-wide factor without the series judged.
#include "history/ChangeSplit.h"
#include "history/RankSumTest.h"
#include "history/RunWideShifts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace kvt::profiling {
namespace {

// The share of the ways to choose which of the values are before's whose statistic (pairs with
// before above, ties half) lies at least as far from its mean as observed: the p-value by
// enumeration.
double pValueOverEveryOrder(const std::vector<double>& before, const std::vector<double>& after) {
  std::vector<double> all(before);
  all.insert(all.end(), after.begin(), after.end());
  const auto statistic = [](const std::vector<double>& a, const std::vector<double>& b) {
    double pairs = 0;
    for (const double x : a)
      for (const double y : b)
        pairs += x > y ? 1 : x == y ? 0.5 : 0;
    return pairs;
  };
  const double mean = double(before.size() * after.size()) / 2;
  const double observed = std::abs(statistic(before, after) - mean);
  std::vector<bool> chosen(all.size(), false);
  std::fill(chosen.begin(), chosen.begin() + ptrdiff_t(before.size()), true);
  uint64_t orders = 0;
  uint64_t asFar = 0;
  do {
    std::vector<double> a;
    std::vector<double> b;
    for (size_t i = 0; i < all.size(); ++i)
      (chosen[i] ? a : b).push_back(all[i]);
    ++orders;
    asFar += std::abs(statistic(a, b) - mean) >= observed - 1e-9 ? 1 : 0;
  } while (std::prev_permutation(chosen.begin(), chosen.end()));
  return double(asFar) / double(orders);
}

TEST(HistoryRules, ExactRankSumPValueAgreesWithEveryOrder) {
  std::mt19937_64 random(7);
  for (int sample = 0; sample < 200; ++sample) {
    const size_t before = 1 + random() % 7;
    const size_t after = 1 + random() % 7;
    std::vector<double> a(before);
    std::vector<double> b(after);
    // Every other sample distinct values, the others many ties.
    const bool tied = sample % 2;
    std::vector<double> values(before + after);
    for (size_t i = 0; i < values.size(); ++i)
      values[i] = tied ? double(random() % 4) : double(i * 3 + 1);
    std::shuffle(values.begin(), values.end(), random);
    std::copy(values.begin(), values.begin() + ptrdiff_t(before), a.begin());
    std::copy(values.begin() + ptrdiff_t(before), values.end(), b.begin());
    SCOPED_TRACE(testing::Message() << "sample " << sample << ", " << before << " vs " << after
                                    << (tied ? ", tied" : ""));
    EXPECT_NEAR(rankSumPValue(a, b), std::min(1.0, pValueOverEveryOrder(a, b)), 1e-9);
  }
}

TEST(HistoryRules, SplitLiesAtTheStepAndNeedsEnoughRunsOnEachSide) {
  struct Case {
    const char* what;
    std::vector<double> values;
    size_t minSide;
    std::optional<size_t> at;
    std::optional<size_t> back;
    std::optional<double> pValue;
  };
  const Case cases[] = {
      {"one split tried, its exact p over the splits' share",
       {10, 10, 11, 20, 21, 20},
       3,
       3,
       std::nullopt,
       0.1 / 0.8},
      {"the step, not the balanced split the rank statistic prefers",
       {10, 11, 10, 12, 11, 15, 16, 30, 31, 30},
       2,
       7,
       std::nullopt,
       std::nullopt},
      {"a change that came back is a stretch: 1 of 84 orders (the tied 10s rule out the reverse), "
       "over the stretches' share",
       {10, 10, 10, 20, 21, 20, 10, 11, 10},
       3,
       3,
       6,
       1.0 / 84 / 0.2},
      {"a one-run spike tells nothing", {5, 5, 6, 5, 50, 5, 6, 5}, 3, 4, std::nullopt, 1.0},
      {"too few values", {1, 2, 3, 4, 5}, 3, std::nullopt, std::nullopt, std::nullopt},
      {"every value equal", {7, 7, 7, 7, 7, 7, 7}, 2, std::nullopt, std::nullopt, std::nullopt},
      {"minSide 0 splits nothing", {1, 2}, 0, std::nullopt, std::nullopt, std::nullopt},
      {"values near 2^64 keep their differences",
       {1.8446744073709e19, 1.8446744073709e19, 1.8446744073709e19, 1.8446744073710e19,
        1.8446744073710e19, 1.8446744073710e19},
       3,
       3,
       std::nullopt,
       0.1 / 0.8},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::optional<ChangeSplit> split = findChangeSplit(c.values, c.minSide);
    ASSERT_EQ(split.has_value(), c.at.has_value());
    if (!split)
      continue;
    EXPECT_EQ(split->at, *c.at);
    EXPECT_EQ(split->back, c.back);
    if (c.pValue) {
      EXPECT_NEAR(split->pValue, *c.pValue, 1e-12);
    }
  }
}

TEST(HistoryRules, RunFactorIsTheMedianShiftOfTheOtherSpans) {
  // Five spans over four runs: run 2 is 8 % slower throughout, span 3 alone 50 % in run 1, and
  // only three spans have a value in run 3.
  const RunSeriesValues spans[] = {{100, 100, 108, 100},
                                   {200, 200, 216, 200},
                                   {300, 300, 324, 300},
                                   {400, 600, std::nullopt, std::nullopt},
                                   {500, 500, 540, std::nullopt}};
  const std::vector<const RunSeriesValues*> pointers{&spans[0], &spans[1], &spans[2], &spans[3],
                                                     &spans[4]};
  const RunWideShifts shifts(pointers, 4);
  struct Case {
    const char* what;
    size_t run;
    std::optional<size_t> leftOut;
    std::optional<double> factor;
  };
  const Case cases[] = {
      {"a quiet run", 0, std::nullopt, 1.0},
      {"one span slower does not move the median of four", 1, std::nullopt, 1.0},
      {"the slower span judged against the others", 1, 3, 1.0},
      {"every span slower, one without a value", 2, std::nullopt, 1.08},
      {"left out, the others still tell", 2, 0, 1.08},
      {"three spans: without the one judged, two would be their mean", 3, 0, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::optional<double> factor = shifts.factor(c.run, c.leftOut);
    ASSERT_EQ(factor.has_value(), c.factor.has_value());
    if (factor) {
      EXPECT_NEAR(*factor, *c.factor, 1e-9);
    }
  }
  const RunSeriesValues empty{std::nullopt, 0};
  const std::vector<const RunSeriesValues*> none{&empty};
  EXPECT_FALSE(RunWideShifts(none, 2).factor(0)) << "no span with a value has no factor";
  EXPECT_FALSE(RunWideShifts(none, 2).factor(1)) << "a value of 0 has no log shift";
}

} // namespace
} // namespace kvt::profiling
