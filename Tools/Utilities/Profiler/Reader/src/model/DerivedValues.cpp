// The derived-value steps: per-graph averages, queue waits per execution, and the init timing,
// which no message carries as such.
#include "DerivedValues.h"

#include "EventMerge.h"

#include <optional>

namespace kvt::profiling {

namespace {

constexpr uint32_t queueWaitEventType = 405; // the time an execution waited in the queue

void computeAverages(EventModel& model) {
  for (const auto& [graph, executions] : model.executionsByGraph)
    model.averageExecutionByGraph.getOrCreate(graph) = averageExecutions(executions);
}

// The payload of the one queue-wait event among the top-level events and their children; none
// when there is no such event or more than one.
std::optional<uint64_t> findSingleQueueWait(const EventList& events) {
  size_t seen = 0;
  uint64_t payload = 0;
  auto visit = [&](const EventRecord& record) {
    if (record.eventType == queueWaitEventType) {
      ++seen;
      payload = record.value.payload;
    }
  };
  for (const EventRecord& record : events) {
    visit(record);
    for (const EventRecord& child : record.children)
      visit(child);
  }
  return seen == 1 ? std::optional(payload) : std::nullopt;
}

// All or nothing: the round trip without queue wait is only meaningful with one wait per
// execution of every graph.
void extractQueueWaits(EventModel& model, std::ostream& warnings) {
  for (const auto& [graph, executions] : model.executionsByGraph) {
    for (const ExecutionEntry& execution : executions) {
      const std::optional<uint64_t> queueWait = findSingleQueueWait(execution.events);
      if (!queueWait) {
        model.queueWaitByGraph.clear();
        warnings << "Multiple queue-wait time events found per execution. Cannot calculate Host "
                    "Round-Trip excluding queue wait\n";
        return;
      }
      model.queueWaitByGraph.getOrCreate(graph).push_back(*queueWait);
    }
  }
}

// With finalize messages, init spans the unnamed step, composing and every finalize; a log
// without them falls back to its init message.
void computeInitTiming(EventModel& model) {
  if (model.hasFinalize) {
    uint64_t duration = model.unnamedTiming.duration + model.composeGraphsTiming.duration;
    for (const auto& entry : model.finalizeByGraph)
      duration += entry.second.duration;
    model.initTiming = {model.unnamedTiming.timestamp, duration};
  }
  if (model.initTiming.duration == 0 && model.initSlot.present)
    model.initTiming = {model.initSlot.timestamp, model.initSlot.duration};
}

} // namespace

void computeDerivedValues(EventModel& model, std::ostream& warnings) {
  computeAverages(model);
  if (model.queueWaitMode)
    extractQueueWaits(model, warnings);
  computeInitTiming(model);
}

} // namespace kvt::profiling
