// The derived-value steps: per-graph averages, queue waits per execution, and the init timing,
// which no message carries as such.
#include "DerivedValues.h"

#include <utility>

namespace kvt::profiling {

namespace {

void computeAverages(EventModel& model) {
  for (auto& [graph, average] : model.runningExecutions.averageByGraph)
    model.averageExecutionByGraph.getOrCreate(graph) = std::move(average).average();
}

// All or nothing: the round trip without queue wait is only meaningful with one wait per
// execution of every graph.
void keepQueueWaits(EventModel& model, std::ostream& warnings) {
  if (model.runningExecutions.queueWaitMissing) {
    warnings << "Multiple queue-wait time events found per execution. Cannot calculate Host "
                "Round-Trip excluding queue wait\n";
    return;
  }
  model.queueWaitByGraph = std::move(model.runningExecutions.queueWaitByGraph);
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
    keepQueueWaits(model, warnings);
  computeInitTiming(model);
  model.runningExecutions = {};
}

} // namespace kvt::profiling
