// Every execution of a log as rows of one long table: one row per value of every series the
// statistics keep, filed by the same walk, handed out as each execution is read.
#pragma once

#include "log/ParseDriver.h"
#include "plugin/VisibilityLevel.h"
#include "statistics/SeriesKey.h"
#include "statistics/SeriesWalk.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace kvt::profiling {

// What the rows' indexes point at; both lists only grow, in order of first appearance.
struct ExecutionKeys {
  std::span<const std::string> graphs;
  std::span<const SeriesKey> series;
};

// One execution's rows, in the order of SeriesWalk. Example: an execution of graph model with
// one record execute holding one step Conv gives duration, (backend, execute, 0),
// (span, Conv, execute, 0).
struct ExecutionRows {
  uint32_t graph = 0;     // index into ExecutionKeys::graphs
  uint64_t execution = 0; // index within its graph, from 0, skipped executions included
  std::span<const SeriesValue> values; // each series an index into ExecutionKeys::series
};

struct ExecutionRowOptions {
  VisibilityLevel visibilityLevel = VisibilityLevel::keepAll;
  uint64_t skipFirst = 0; // executions of each graph that give no rows
};

// Called with each counted execution's rows and the keys known so far; both live only during the
// call.
using ExecutionRowSink = std::function<void(const ExecutionRows&, const ExecutionKeys&)>;

// Reads the log at path through the reader's parse and dispatch, under the tools' rule that a
// log is whole chunks, handing each counted execution's rows to sink as it is read. Incomplete
// when the file is no log or a chunk is bad, with the fault and the reader's own report to the
// log facility; the rows of the whole chunks before a bad one have been handed out, and none of
// it. Memory: one chunk, one execution's rows and the keys.
LogReadResult readExecutionRows(const std::string& path, const ExecutionRowOptions& options,
                                const ExecutionRowSink& sink);

} // namespace kvt::profiling
