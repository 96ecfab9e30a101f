// The module's data frames from the analysis library's tables.
#pragma once

#include "comparison/RunComparison.h"
#include "statistics/RunStatistics.h"
#include "tables/ExecutionColumns.h"

#include <pybind11/pybind11.h>

#include <string>

namespace kvt::profiling {

namespace py = pybind11;

// graph, execution, series, parent, name, occurrence, value; the columns are emptied as they
// are copied, so the rows are never held twice. Called with the GIL held; it releases it for the
// copies.
py::object makeExecutionsFrame(ExecutionColumns& columns);

// graph, series, name, parent, occurrence, count, mean, stddev, min, p50, p90, p99, max, first,
// share: a row per series, as `stats --format csv` lists them.
py::object makeStatsFrame(const RunStatistics& run);

// graph, series, name, parent, occurrence, base_count, base_p50, new_count, new_p50, shift,
// changePercent, interval_low, interval_high, pValue, pAdjusted, qValue, verdict, needed_base,
// needed_new: the
// rows of `compare --format json`, its base and new sides and its interval as flat columns.
py::object makeComparisonFrame(const Comparison& comparison);

// The graphs' run-wide shifts as `compare --format json` lists them, each a dict of name, shift,
// changePercent, interval_low, interval_high, ratio and stepSeries (None where JSON has null),
// and the
// totals as a dict of slower, faster, same, unsure, added, removed and tested.
py::list describeGraphShifts(const Comparison& comparison);
py::dict describeTotals(const ComparisonTotals& totals);

} // namespace kvt::profiling
