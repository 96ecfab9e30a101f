// The rule of the report that small logs express badly: which of thousands of values in execution
// order the execution plot keeps.
#include "ExecutionPoints.h"

#include <gtest/gtest.h>

#include <vector>

namespace kvt::profiling {
namespace {

std::vector<uint64_t> flatWithSpike(size_t count, size_t spikeAt) {
  std::vector<uint64_t> values(count, 100);
  values[spikeAt] = 9000;
  return values;
}

TEST(ReportRules, ThinningKeepsTheExtremesOfEqualRuns) {
  struct Case {
    const char* what;
    std::vector<uint64_t> values;
    size_t maxPoints;
    std::vector<uint64_t> expectedIndex;
  };
  const Case cases[] = {
      {"values that fit are all kept", {5, 1, 9}, 4, {0, 1, 2}},
      {"two runs of three give their min and max", {5, 1, 9, 2, 8, 3}, 4, {1, 2, 3, 4}},
      {"a run of equal values gives one point", {7, 7, 7, 7, 1, 9}, 4, {0, 4, 5}},
      {"a spike among 5000 flat values stays", flatWithSpike(5000, 3333), 4, {0, 2500, 3333}},
      {"an odd limit keeps an even number of points", {5, 1, 9, 2, 8, 3}, 5, {1, 2, 3, 4}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ExecutionPoints points = thinExecutionPoints(c.values, c.maxPoints);
    EXPECT_EQ(points.index, c.expectedIndex);
    ASSERT_EQ(points.value.size(), points.index.size());
    for (size_t i = 0; i < points.index.size(); ++i)
      EXPECT_EQ(points.value[i], c.values[points.index[i]]);
  }
}

} // namespace
} // namespace kvt::profiling
