// The one walk of an execution that decides which value belongs to which series; the statistics
// and the long table of executions both file values as it names them.
#pragma once

#include "OccurrenceIndex.h"
#include "SeriesKey.h"
#include "model/ExecutionSeam.h"
#include "model/GraphMap.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kvt::profiling {

struct SeriesValue {
  size_t series = 0; // index into SeriesWalk::keys()
  uint64_t value = 0;
};

struct WalkedExecution {
  size_t graph = 0;                    // index into SeriesWalk::graphs()
  uint64_t execution = 0;              // index within its graph, from 0
  std::span<const SeriesValue> values; // valid until the next walk
};

// An execution's values, in this order: its duration; its queue wait when it has exactly one
// queue-wait event (type 405, top level or one below); then each top-level record, as a
// back-end record keyed by (identifier, occurrence) unless it is that queue wait, followed by the
// span and, where it has one, the wait (its last 5001 child) of each of its steps (type 404),
// keyed by (parent, name, occurrence). Each value belongs to exactly one series, and a queue wait
// is a back-end record only in an execution with several. Example: graph model,
// records queue (405) and execute holding one step Conv give duration, queueWait,
// (backend, execute, 0), (span, Conv, execute, 0).
class SeriesWalk {
public:
  // Counts the execution in its graph; executions of a graph before valuesFrom give no values.
  WalkedExecution walk(const DispatchedExecution& execution, uint64_t valuesFrom = 0);

  // Both lists only grow, in order of first appearance.
  const std::vector<std::string>& graphs() const { return graphNames; }
  const std::vector<SeriesKey>& keys() const { return seriesKeys; }

private:
  struct GraphState {
    size_t index = 0;
    uint64_t executions = 0;
    std::optional<size_t> duration;
    std::optional<size_t> queueWait;
    OccurrenceIndex records;
    SeriesKey backend; // the key looked up for a record, reused
    SeriesKey step;    // for a step
  };

  size_t findGraphSeries(std::optional<size_t>& series, const std::string& graph, SeriesKind kind);
  size_t findSeries(GraphState& graph, const SeriesKey& record);
  // The wait series of a step's span series, made when its first wait is met.
  size_t findWaitSeries(size_t span);
  // A record that is the execution's queue wait gives only its steps.
  void walkRecord(GraphState& graph, const schema::Event& record, bool queueWait);

  std::vector<std::string> graphNames;
  std::vector<SeriesKey> seriesKeys;
  GraphMap<GraphState> graphStates;
  std::vector<std::optional<size_t>> waitBySpan; // by series index
  std::vector<SeriesValue> values;
};

} // namespace kvt::profiling
