// What a statistics pass keeps of a log: per graph, the values of every series of its
// executions, and nothing else per execution.
#pragma once

#include "log/ParseDriver.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kvt::profiling {

// The values of one figure over a graph's counted executions (8 bytes each), sorted ascending
// once the pass is over, and its value in the graph's very first execution.
struct Series {
  std::vector<uint64_t> values;
  std::optional<uint64_t> first;
  // While a pass that hands out the execution order runs: how many of the values, at the front,
  // came from skipped executions. 0 once the pass is over.
  uint64_t skippedValues = 0;
};

// A top-level back-end record of an execution: the occurrence-th record of its identifier in one
// execution, from 0.
struct BackendSeries {
  std::string name;
  uint64_t occurrence = 0;
  Series value;
};

// An execution step (event type 404) under a top-level record named parent: the occurrence-th
// step of that name under that parent name in one execution, from 0. wait holds the value of the
// step's last wait child (event type 5001) in the executions where it had one.
struct StepSeries {
  std::string name;
  std::string parent;
  uint64_t occurrence = 0;
  Series span;
  Series wait;
};

struct GraphStatistics {
  std::string name;
  uint64_t executions = 0; // every execution of the graph, counted or skipped
  uint64_t skipped = 0;    // the first ones, left out of every series' values
  Series duration;
  Series queueWait;                   // of the executions with exactly one queue-wait event
  std::vector<BackendSeries> backend; // in order of first appearance
  std::vector<StepSeries> steps;      // in order of first appearance
};

struct RunStatistics {
  std::vector<GraphStatistics> graphs; // in order of first appearance
  std::optional<uint64_t> createdUs;   // the log header's creation time, us since the Unix epoch
  // Read partially: the whole chunks before the first bad one, and that chunk's fault.
  std::optional<LogReadResult> partial;
};

// Calls visit on every series of the graph: its duration and queue wait, each back-end record's
// values and each step's span and wait.
template <typename Visit> void forEachSeries(GraphStatistics& graph, Visit visit) {
  visit(graph.duration);
  visit(graph.queueWait);
  for (BackendSeries& record : graph.backend)
    visit(record.value);
  for (StepSeries& step : graph.steps) {
    visit(step.span);
    visit(step.wait);
  }
}

// Whether some execution, counted or the first, gave the series a value.
inline bool hasValues(const Series& series) {
  return series.first || !series.values.empty();
}

// Whether the graph's queue waits are a series to report: some execution had one.
inline bool hasQueueWaitSeries(const GraphStatistics& graph) {
  return hasValues(graph.queueWait);
}

} // namespace kvt::profiling
