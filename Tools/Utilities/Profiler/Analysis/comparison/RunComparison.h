// Compares the series of two runs: graphs matched by name, series by kind and key. Each matched
// series gets the estimated shift of its values with a confidence interval, a rank test adjusted
// for the number of series tested, and a verdict that says whether a change was shown, an
// equivalence was shown, or neither.
#pragma once

#include "ComparisonOptions.h"
#include "NeededExecutions.h"
#include "ShiftEstimate.h"
#include "statistics/RunStatistics.h"
#include "statistics/SeriesList.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kvt::profiling {

enum class Verdict { slower, faster, same, unsure, added, removed };

// "slower", "faster", "same", "unsure", "added" or "removed".
std::string_view verdictName(Verdict verdict);

// One side of a row: its counted values and their median, none when it has no values.
struct ComparedSide {
  uint64_t count = 0;
  std::optional<uint64_t> p50;
};

// A shift in percent of the base median.
struct PercentChange {
  double percent = 0;
  std::optional<Interval> interval;
};

// A shift in percent of a base median, none when the median is 0 and a percentage means nothing.
std::optional<PercentChange> inPercent(const ShiftEstimate& shift, uint64_t baseMedian);

struct ComparisonRow {
  std::string graph;
  SeriesKind kind = SeriesKind::duration;
  std::string name;
  std::optional<std::string> parent;
  std::optional<uint64_t> occurrence;
  ComparedSide base;
  ComparedSide next;
  std::optional<ShiftEstimate> shift;     // in log units; none unless both sides have values
  std::optional<PercentChange> change;    // of the base median; none unless shift and base p50 > 0
  std::optional<double> pValue;           // two-sided rank test; none unless both sides have values
  std::optional<double> pAdjusted;        // Holm, over every row with a p-value
  std::optional<double> qValue;           // Benjamini-Hochberg, over the same rows
  std::optional<NeededExecutions> needed; // unsure rows: executions per run that would decide
  Verdict verdict = Verdict::same;
};

// The run-wide change of a graph: the shift of its execution durations, and the factor its steps
// moved by in common (StepFactor.h). In relative comparisons the new run's back-end values and
// waits are divided by ratio before they are judged, and each step's spans by the median of the
// other steps' shifts.
struct GraphShift {
  std::string name;
  std::optional<ShiftEstimate> shift;  // none unless both runs have durations
  std::optional<PercentChange> change; // none unless shift and a base median above 0
  double ratio = 1;        // exp of the median log shift of stepSeries; 1 when they are too few
  uint64_t stepSeries = 0; // steps' span series of both runs with medians above 0
};

struct ComparisonTotals {
  uint64_t slower = 0;
  uint64_t faster = 0;
  uint64_t same = 0;
  uint64_t unsure = 0;
  uint64_t added = 0;
  uint64_t removed = 0;
  uint64_t tested = 0; // rows with a p-value, the family the adjustments count
};

struct Comparison {
  ComparisonOptions options;
  std::vector<GraphShift> graphs;  // base graphs in order, then what new adds
  std::vector<ComparisonRow> rows; // base graphs and series in their order, then what new adds
  ComparisonTotals totals;
};

// The change below which a row counts as unchanged: marginUnits of its base median.
double marginUnits(const ComparisonRow& row, const ComparisonOptions& options);

// slower: the Holm-adjusted p-value is below alpha and the shift exceeds the margin (the
// threshold's share of the base median, and minChangeUnits); faster likewise the other way.
// same: the (1 - 2 alpha) interval of the shift lies within plus or minus the margin. unsure:
// neither, with the executions per run at which it would decide (NeededExecutions.h, for
// differences as spread as now). Series of only one run are added or removed.
Comparison compareRuns(const RunStatistics& base, const RunStatistics& next,
                       const ComparisonOptions& options);

} // namespace kvt::profiling
