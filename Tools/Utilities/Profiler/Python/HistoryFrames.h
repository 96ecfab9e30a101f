// The frames of a history of runs, one of its changes and one of its values per run, and what
// their attrs say of it; the history itself is the analysis library's.
#pragma once

#include "history/RunHistory.h"

#include <pybind11/pybind11.h>

namespace kvt::profiling {

namespace py = pybind11;

// graph, series, name, parent, occurrence, run, source, before, after, change_percent,
// interval_low, interval_high, p_adjusted, q_value, verdict: a row per change of a series (the
// "changes" of `history --format json`, flat and in snake_case), series in the history's order,
// each one's changes by run.
py::object makeHistoryChangesFrame(const History& history);

// graph, series, name, parent, occurrence, run, source, value: a row per series and run with a
// value, run after run (the rows of `history --format csv`).
py::object makeHistoryValuesFrame(const History& history);

// attrs "runs": a dict per run of source, created (None for a stats document) and executions.
py::list describeHistoryRuns(const History& history);

// attrs "graphs": a dict per graph of graph, run_factor (a float per run, None where it has
// none) and run_wide, its changes, each a dict of the changes frame's columns from run on.
py::list describeHistoryGraphs(const History& history);

// attrs "totals": series, changes, slower, faster, added, removed, run_wide, slower_in_gate,
// tested.
py::dict describeHistoryTotals(const HistoryTotals& totals);

} // namespace kvt::profiling
