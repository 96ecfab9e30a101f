// The seam through which each execution reaches whatever a reader builds of it: dispatch hands
// every execution, as it meets it, to the consumers the reader attached.
#pragma once

#include "EventModel.h"
#include "ProfileLog_generated.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kvt::profiling {

// One execution of a graph (message types 1, 3 and 9 that passed the level filter). The events
// are its top-level execution events, init and finalize ones routed away; they and the graph
// name point into the verified chunk and are valid only during the call.
struct DispatchedExecution {
  std::string_view graph;
  uint64_t duration = 0;
  uint64_t timestamp = 0;
  std::span<const schema::Event* const> events;
};

// Called once per execution, in log order.
using ExecutionConsumer = std::function<void(const DispatchedExecution&)>;
using ExecutionConsumers = std::vector<ExecutionConsumer>;

// The one queue-wait event among the events and their children; null when there is no such
// event or more than one.
const schema::Event* findSingleQueueWaitEvent(std::span<const schema::Event* const> events);

// Its payload.
std::optional<uint64_t> findSingleQueueWait(std::span<const schema::Event* const> events);

// Folds the execution into its graph's running average and, while every execution so far had
// exactly one, its queue waits.
void foldIntoRunningAverage(RunningExecutions& running, const DispatchedExecution& execution);

} // namespace kvt::profiling
