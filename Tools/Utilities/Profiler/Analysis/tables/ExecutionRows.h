// Every execution of a log as rows of one long table: one row per value of every series the
// statistics keep, keyed as the statistics key their series, handed out as each execution is
// read.
#pragma once

#include "log/ParseDriver.h"
#include "model/ExecutionSeam.h"
#include "model/GraphMap.h"
#include "plugin/VisibilityLevel.h"
#include "statistics/OccurrenceIndex.h"
#include "statistics/SeriesList.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kvt::profiling {

// The key of one series of one graph, as listSeries gives it.
struct ExecutionSeriesKey {
  uint32_t graph = 0; // index into ExecutionKeys::graphs
  SeriesKind kind = SeriesKind::duration;
  std::string name;                   // the kind's name for duration and queueWait
  std::optional<std::string> parent;  // steps only
  std::optional<uint64_t> occurrence; // back-end records and steps only
};

// What the rows' indexes point at; both lists only grow, in order of first appearance.
struct ExecutionKeys {
  std::vector<std::string> graphs;
  std::vector<ExecutionSeriesKey> series;
};

struct ExecutionValue {
  size_t series = 0; // index into ExecutionKeys::series
  uint64_t value = 0;
};

// One execution's rows: its duration, its queue wait when it had exactly one, then each
// top-level back-end record followed by the span and, where it has one, the wait of each of its
// steps. Example: an execution of graph model with one record execute holding one step Conv
// gives duration, (backend, execute, 0), (span, Conv, execute, 0).
struct ExecutionRows {
  uint32_t graph = 0;
  uint64_t execution = 0; // index within its graph, from 0, skipped executions included
  std::span<const ExecutionValue> values;
};

// Splits dispatched executions into rows, keeping the keys and one execution's rows.
class ExecutionRowSplitter {
public:
  // The first skipFirst executions of each graph give no rows.
  explicit ExecutionRowSplitter(uint64_t skipFirst) : skipFirst(skipFirst) {}

  // The execution's rows, valid until the next call; none when it is skipped.
  std::optional<ExecutionRows> split(const DispatchedExecution& execution);
  const ExecutionKeys& keys() const { return known; }

private:
  struct GraphState {
    uint32_t index = 0;
    uint64_t executions = 0;
    std::optional<size_t> durationSeries;
    std::optional<size_t> queueWaitSeries;
    OccurrenceIndex backendIndex;
    OccurrenceIndex stepIndex;
  };
  size_t findSeries(const GraphState& graph, OccurrenceIndex& index, SeriesKind kind,
                    std::string_view parent, std::string_view name);
  size_t findGraphSeries(std::optional<size_t>& series, uint32_t graph, SeriesKind kind);
  // The wait series of a step's span series, made when its first wait is met.
  size_t findWaitSeries(size_t span);
  void splitRecord(GraphState& graph, const schema::Event& record);

  uint64_t skipFirst = 0;
  ExecutionKeys known;
  GraphMap<GraphState> graphs;
  std::vector<std::optional<size_t>> waitBySpan; // by series index
  std::vector<ExecutionValue> values;
};

struct ExecutionRowOptions {
  VisibilityLevel visibilityLevel = VisibilityLevel::keepAll;
  uint64_t skipFirst = 0; // executions of each graph that give no rows
};

// Called with each counted execution's rows and the keys known so far.
using ExecutionRowSink = std::function<void(const ExecutionRows&, const ExecutionKeys&)>;

// Reads the log at path through the reader's parse and dispatch, under the tools' rule that a
// log is whole chunks, handing each counted execution's rows to sink as it is read. Incomplete
// when the file is no log or a chunk is bad, with the fault and the reader's own report to the
// log facility; the rows of the whole chunks before a bad one have been handed out, and none of
// it. Memory: one chunk, one execution's rows and the keys.
LogReadResult readExecutionRows(const std::string& path, const ExecutionRowOptions& options,
                                const ExecutionRowSink& sink);

} // namespace kvt::profiling
