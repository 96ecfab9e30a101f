// The running average, the consumer every reader attaches.
#include "ExecutionSeam.h"

#include "EventBuilder.h"

namespace kvt::profiling {

const schema::Event* findSingleQueueWaitEvent(std::span<const schema::Event* const> events) {
  size_t seen = 0;
  const schema::Event* found = nullptr;
  auto visit = [&](const schema::Event& event) {
    if (event.event_type() == queueWaitEvent) {
      ++seen;
      found = &event;
    }
  };
  for (const schema::Event* event : events) {
    visit(*event);
    if (const EventVector* children = event->child_events())
      for (const schema::Event* child : *children)
        visit(*child);
  }
  return seen == 1 ? found : nullptr;
}

std::optional<uint64_t> findSingleQueueWait(std::span<const schema::Event* const> events) {
  if (const schema::Event* queueWait = findSingleQueueWaitEvent(events))
    return readTaggedValue(*queueWait).payload;
  return std::nullopt;
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
