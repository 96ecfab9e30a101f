// The module's data frames from the analysis library's tables.
#pragma once

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

} // namespace kvt::profiling
