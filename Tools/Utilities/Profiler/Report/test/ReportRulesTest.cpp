// The rules of the report that small logs express badly: which of thousands of values in
// execution order the execution plot keeps, how many a run with many series keeps per series,
// how the kept ones' indexes are written, and which blanks the compact data drops.
#include "ExecutionPoints.h"
#include "ReportData.h"
#include "RunFigures.h"

#include <gtest/gtest.h>

#include <numeric>
#include <sstream>
#include <string>
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

// One graph of seriesCount series, each with pointsEach points.
RunFigures runOf(size_t seriesCount, size_t pointsEach) {
  std::vector<uint64_t> values(pointsEach);
  std::iota(values.begin(), values.end(), 0);
  RunFigures run;
  run.graphs.emplace_back().series.resize(seriesCount);
  for (PageSeries& series : run.graphs[0].series)
    series.points = thinExecutionPoints(values, pointsEach);
  return run;
}

TEST(ReportRules, ARunOfManySeriesSharesItsPointBudget) {
  struct Case {
    const char* what;
    size_t seriesCount;
    size_t pointsEach;
    size_t expectedEach;
  };
  const Case cases[] = {
      {"100 series of 2000 points fit the budget", 100, 2000, 2000},
      {"150 series share 200,000 points, an even number each", 150, 2000, 1332},
      {"20,000 series keep the floor of 20 points each", 20000, 40, 20},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    RunFigures run = runOf(c.seriesCount, c.pointsEach);
    boundPoints(run);
    for (const PageSeries& series : run.graphs[0].series)
      ASSERT_EQ(series.points.index.size(), c.expectedEach);
  }
}

std::string dataOf(const ReportInput& input) {
  std::ostringstream data;
  writeReportData(data, input);
  return data.str();
}

TEST(ReportRules, ThinnedPointsCarryTheGapsBetweenTheirIndexes) {
  struct Case {
    const char* what;
    std::vector<uint64_t> values;
    size_t maxPoints;
    const char* expected;
  };
  const Case cases[] = {
      {"all kept: no gaps", {5, 1, 9}, 4, "\"gaps\":null,\"value\":[5,1,9]"},
      {"the first gap counts from 0", {5, 1, 9, 2, 8, 3}, 4, "\"gaps\":[1,1,1,1]"},
      {"a spike far into a long run", flatWithSpike(5000, 3333), 4, "\"gaps\":[0,2500,833]"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ReportInput input;
    PageSeries& series = input.run.graphs.emplace_back().series.emplace_back();
    series.points = thinExecutionPoints(c.values, c.maxPoints);
    series.values = c.values.size();
    EXPECT_NE(dataOf(input).find(c.expected), std::string::npos) << dataOf(input);
  }
}

TEST(ReportRules, TheDataDropsBlanksOutsideItsStringsOnly) {
  struct Case {
    const char* what;
    const char* title;
    const char* expected;
  };
  const Case cases[] = {
      {"blanks after a comma and a colon in a string stay", "a, b: c", "\"title\":\"a, b: c\","},
      {"an escaped quote does not end the string", "say \"x, y\": z",
       "\"title\":\"say \\\"x, y\\\": z\","},
      {"an escaped backslash before the end does", "c:\\", "\"title\":\"c:\\\\\",\n  \"unit\":"},
      {"a < cannot close the script element", "</script>, x", "\"title\":\"\\u003c/script>, x\","},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ReportInput input;
    input.title = c.title;
    EXPECT_NE(dataOf(input).find(c.expected), std::string::npos) << dataOf(input);
    EXPECT_NE(dataOf(input).find("\"skipFirst\":0,"), std::string::npos);
  }
}

} // namespace
} // namespace kvt::profiling
