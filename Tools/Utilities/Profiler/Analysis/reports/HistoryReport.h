// The reports of kvt-profile-log history: a table of changes, one JSON document, or the long
// CSV table of every run's values.
#pragma once

#include "history/RunHistory.h"

#include <cstdint>
#include <ostream>

namespace kvt::profiling {

// How the history's values were taken, for the JSON document to say.
struct HistoryReportOptions {
  HistoryFigure figure = HistoryFigure::p50;
  uint64_t skipFirst = 0;
};

// A line per graph with its run-wide changes; then one row per change of a series, latest run
// first (series in history order within a run): verdict, run, graph, series, name, parent,
// occurrence, median before and after, change % and its interval, Holm-adjusted p, q-value and
// the run's source; then a line of totals. Says plainly when too few runs allow no change.
void writeHistoryTable(std::ostream& out, const History& history);

// {"figure", "skipFirst", "alpha", "threshold", "minChange", "minRuns", "relative", "gate",
// "tooFewRuns", "runs": [...], "series": [...], "graphs": [...], "totals": {...}}, one run,
// series or graph a line. Figures that do not exist are null, never NaN.
void writeHistoryJson(std::ostream& out, const History& history,
                      const HistoryReportOptions& options);

// run,source,graph,series,name,parent,occurrence,value: a line per series and run with a value.
void writeHistoryCsv(std::ostream& out, const History& history);

// A value in its shortest exact form, "1000", "1.08" or "1e+20"; "null" when there is none.
std::string formatShortest(std::optional<double> value);

} // namespace kvt::profiling
