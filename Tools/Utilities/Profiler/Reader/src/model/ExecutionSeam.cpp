// The running average, the consumer every reader attaches.
#include "ExecutionSeam.h"

#include "EventBuilder.h"

namespace kvt::profiling {

std::optional<uint64_t> findSingleQueueWait(std::span<const schema::Event* const> events) {
  size_t seen = 0;
  uint64_t payload = 0;
  auto visit = [&](const schema::Event& event) {
    if (event.event_type() == queueWaitEvent) {
      ++seen;
      payload = readTaggedValue(event).payload;
    }
  };
  for (const schema::Event* event : events) {
    visit(*event);
    if (const EventVector* children = event->child_events())
      for (const schema::Event* child : *children)
        visit(*child);
  }
  return seen == 1 ? std::optional(payload) : std::nullopt;
}

void foldIntoRunningAverage(RunningExecutions& running, const DispatchedExecution& execution) {
  if (!running.queueWaitMissing) {
    if (const std::optional<uint64_t> queueWait = findSingleQueueWait(execution.events)) {
      running.queueWaitByGraph.getOrCreate(execution.graph).push_back(*queueWait);
    } else {
      running.queueWaitMissing = true;
      running.queueWaitByGraph.clear(); // none of them will be reported
    }
  }
  running.averageByGraph.getOrCreate(execution.graph)
      .add(execution.duration, execution.timestamp, execution.events);
}

} // namespace kvt::profiling
