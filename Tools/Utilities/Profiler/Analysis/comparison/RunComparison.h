// Compares the series of two runs: graphs matched by name, series by kind and key; each matched
// series gets a verdict from the change of its median and a rank test.
#pragma once

#include "statistics/RunStatistics.h"
#include "statistics/SeriesList.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kvt::profiling {

enum class Verdict { slower, faster, same, added, removed };

// "slower", "faster", "same", "added" or "removed".
std::string_view verdictName(Verdict verdict);

// One side of a row: its counted values and their median, none when it has no values.
struct ComparedSide {
  uint64_t count = 0;
  std::optional<uint64_t> p50;
};

struct ComparisonRow {
  std::string graph;
  SeriesKind kind = SeriesKind::duration;
  std::string name;
  std::optional<std::string> parent;
  std::optional<uint64_t> occurrence;
  ComparedSide base;
  ComparedSide next;
  std::optional<double> changePercent; // of the median; none unless both have a non-zero base
  std::optional<double> pValue;        // none unless both sides have values
  Verdict verdict = Verdict::same;
};

struct ComparisonTotals {
  uint64_t slower = 0;
  uint64_t faster = 0;
  uint64_t same = 0;
  uint64_t added = 0;
  uint64_t removed = 0;
};

struct Comparison {
  std::vector<ComparisonRow> rows; // base graphs and series in their order, then what new adds
  ComparisonTotals totals;
};

inline constexpr double rankTestAlpha = 0.01; // the p-value below which a change is not noise

// slower when the new median exceeds the base median by more than thresholdPercent and the
// rank test's p-value is below rankTestAlpha; faster likewise the other way; same otherwise.
// Series of only one run are added or removed.
Comparison compareRuns(const RunStatistics& base, const RunStatistics& next,
                       double thresholdPercent);

} // namespace kvt::profiling
