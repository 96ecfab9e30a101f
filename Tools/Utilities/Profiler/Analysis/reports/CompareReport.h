// The reports of kvt-profile-log compare: an aligned table, or one JSON document.
#pragma once

#include "comparison/RunComparison.h"
#include "log/ParseDriver.h"

#include <optional>
#include <ostream>
#include <string>

namespace kvt::profiling {

// A line per graph with its run-wide shift and its step factor (and, in relative comparisons, what
// is judged net of it); then one row per series, slower rows first, then faster, then unsure,
// then the rest, each group in comparison order: verdict, graph, series, name, parent,
// occurrence, base count and p50, new count and p50, change % and its interval, p-value,
// Holm-adjusted p, q-value, and for unsure rows the executions each run needs beyond those it has
// ("+86/+0", base/new); then a line of totals. Figures that do not exist print as "-".
void writeComparisonTable(std::ostream& out, const Comparison& comparison);

// How far each run of a comparison was read, when partially.
struct ComparedPartials {
  std::optional<LogReadResult> base;
  std::optional<LogReadResult> next;
};

// {"base": PATH, "new": PATH, "alpha", "threshold", "minChange", "relative", "graphs": [...],
// "rows": [...], "totals": {...}}, one graph or row a line, rows in comparison order; a row's
// "needed" is {"base": MORE, "new": MORE}, the executions each run needs beyond those it has.
// When a run was read partially, "partial": {"base": {...} or null, "new": ...} (see
// writePartialJson) follows "new".
void writeComparisonJson(std::ostream& out, const Comparison& comparison,
                         const std::string& basePath, const std::string& newPath,
                         const ComparedPartials& partials = {});

// The pieces of that document, for other JSON that carries a comparison: a side's {"count",
// "p50"}; an interval's [low, high] or null; a graph's {"name", "runShift"}; the totals.
void writeComparedSideJson(std::ostream& out, const ComparedSide& side);
void writeIntervalJson(std::ostream& out, const std::optional<Interval>& interval);
void writeGraphJson(std::ostream& out, const GraphShift& graph);
void writeTotalsJson(std::ostream& out, const ComparisonTotals& totals);

} // namespace kvt::profiling
