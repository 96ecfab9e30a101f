// The module's data frames from the analysis library's tables. Every frame leads with the series'
// key, graph, series, name, parent and occurrence; whole numbers are int64 (Int64 where one may
// be missing), so that differences of them keep their sign.
#pragma once

#include "comparison/RunComparison.h"
#include "statistics/RunStatistics.h"
#include "tables/ExecutionColumns.h"

#include <pybind11/pybind11.h>

#include <string>
#include <vector>

namespace kvt::profiling {

namespace py = pybind11;

// The logs a frame holds, in the order read: they name the place of an oversized value and,
// when column is set, are the categories of the frame's last column, log.
struct FrameLogs {
  std::vector<std::string> paths;
  bool column = false;
};

// The categories of every frame's series column, each kind present or not, and of its verdict
// column, an ordered categorical: slower < faster < same < unsure < added < removed.
std::vector<std::string> listSeriesKinds();
std::vector<std::string> listVerdicts();

// graph, series, name, parent, occurrence, execution, value (then log); the columns are emptied
// as they are copied, so the rows are never held twice. Called with the GIL held; it releases it
// for the copies. Raises OverflowError, naming the value, when some value exceeds 2^63 - 1.
py::object makeExecutionsFrame(ExecutionColumns& columns, const FrameLogs& logs);

// graph, series, name, parent, occurrence, count, mean, stddev, min, p50, p90, p99, max, first,
// share (then log): a row per series, as `stats --format csv` lists them, the runs' rows one run
// after the other. Raises OverflowError when a figure exceeds 2^63 - 1.
py::object makeStatsFrame(const std::vector<RunStatistics>& runs, const FrameLogs& logs);

// graph, series, name, parent, occurrence, base_count, base_p50, new_count, new_p50, shift,
// change_percent, interval_low, interval_high, p_value, p_adjusted, q_value, verdict, needed_base,
// needed_new: the
// rows of `compare --format json`, its base and new sides and its interval as flat columns.
// Raises OverflowError when a median exceeds 2^63 - 1.
py::object makeComparisonFrame(const Comparison& comparison);

// The graphs' run-wide shifts as `compare --format json` lists them, each a dict of name, shift,
// change_percent, interval_low, interval_high, ratio and step_series (None where JSON has null),
// and the
// totals as a dict of slower, faster, same, unsure, added, removed and tested.
py::list describeGraphShifts(const Comparison& comparison);
py::dict describeTotals(const ComparisonTotals& totals);

} // namespace kvt::profiling
