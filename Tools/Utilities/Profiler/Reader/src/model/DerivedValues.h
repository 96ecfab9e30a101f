// The values computed once after the last message: per-graph averages, queue waits, init timing.
#pragma once

#include "EventModel.h"

#include <ostream>

namespace kvt::profiling {

// Runs, in order: the running average of each graph's executions into averageExecutionByGraph;
// when queueWaitMode is set, the queue wait gathered from each execution (type 405, top level or
// one below) into queueWaitByGraph, or none at all with a warning unless every execution had
// exactly one; the init timing. Empties runningExecutions. Warnings for the user are appended to
// warnings.
void computeDerivedValues(EventModel& model, std::ostream& warnings);

} // namespace kvt::profiling
