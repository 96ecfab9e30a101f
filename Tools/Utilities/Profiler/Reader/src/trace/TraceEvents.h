// The trace's spans, laid end to end on a Foreground and a Background row from the detailed
// sub-events of every execution step of the averaged executions.
#pragma once

#include "model/EventModel.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kvt::profiling {

// One complete event of the trace; times are in the log's unit, unchanged.
struct TraceEvent {
  std::string name;
  uint64_t start = 0; // on the running cursor, which starts at 0
  uint64_t duration = 0;
  bool foreground = true;
  std::string resources; // empty: no "Resources" argument
  std::string colour;    // empty: no "cname"
};

// The names joined with ", " between them; joinNames({"Load", "Store"}) == "Load, Store".
std::string joinNames(const std::vector<std::string>& names);

// For each graph, each top-level record and each of its execution steps (type 404), in order:
// a grey "Wait" and the wait's background items when the wait is not 0, then the step and its
// execution background items when the step's value is not 0. Each pair starts at the cursor,
// which advances by the foreground span only. Empty when a step lacks one of its four kinds of
// sub-event (5001 to 5004); that is reported as the incompatible-log error.
std::optional<std::vector<TraceEvent>>
buildTraceEvents(const GraphMap<ExecutionEntry>& averageExecutionByGraph);

} // namespace kvt::profiling
