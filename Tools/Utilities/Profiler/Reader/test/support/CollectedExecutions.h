// Every execution a parse dispatched, copied out of the chunk, for tests that look at them one
// by one.
#pragma once

#include "model/EventBuilder.h"
#include "model/ExecutionSeam.h"
#include "model/GraphMap.h"

#include <vector>

namespace kvt::profiling::testing {

using ExecutionsByGraph = GraphMap<std::vector<ExecutionEntry>>;

struct CollectedExecutions {
  ExecutionsByGraph byGraph;

  // Valid while this object lives at its place.
  ExecutionConsumer consumer() {
    return [this](const DispatchedExecution& execution) {
      byGraph.getOrCreate(execution.graph)
          .push_back(
              {execution.duration, execution.timestamp, buildEventRecords(execution.events)});
    };
  }
};

} // namespace kvt::profiling::testing
