// What a parse keeps of a log: per-method timings, per-graph entries and the derived averages.
#pragma once

#include "EventMerge.h"
#include "EventRecord.h"
#include "ExecutionEntry.h"
#include "GraphMap.h"
#include "log/LogCodes.h"

#include <cstdint>
#include <vector>

namespace kvt::profiling {

// A timestamp and a duration, both in the log's time unit.
struct TimingPair {
  uint64_t timestamp = 0;
  uint64_t duration = 0;
};

// A run-level step: init, overall execution, de-init, library load. The de-init slot never sets
// present; test it by its contents.
struct RunLevelSlot {
  uint64_t duration = 0;
  uint64_t timestamp = 0;
  EventList events;
  bool present = false;
};

// What parsing gathers of every execution as it comes, for the values derived afterwards.
struct RunningExecutions {
  GraphMap<ExecutionAverager> averageByGraph;
  // Each execution's one queue-wait event, while no execution has lacked it.
  GraphMap<std::vector<uint64_t>> queueWaitByGraph;
  bool queueWaitMissing = false; // some execution had no queue-wait event, or several
};

struct EventModel {
  TimingPair initTiming;          // derived after parsing
  TimingPair unnamedTiming;       // type 6
  TimingPair composeGraphsTiming; // type 7
  EventList initEvents;           // event type 100 of graph messages; the last one decides
  bool hasInitEvents = false;
  RunLevelSlot initSlot; // type 4
  GraphMap<FinalizeEntry> finalizeByGraph;
  bool hasFinalize = false;
  bool hasFinalizeEvents = false;
  bool queueWaitMode = false;
  RunningExecutions runningExecutions; // while parsing, by the readers' consumer; emptied after
  GraphMap<ExecutionEntry> averageExecutionByGraph; // derived after parsing
  GraphMap<std::vector<uint64_t>> queueWaitByGraph; // derived after parsing, one per execution
  RunLevelSlot executeOverallSlot;                  // type 8
  bool hasCombinedExecute = false;
  RunLevelSlot deinitSlot;  // type 5
  RunLevelSlot libLoadSlot; // type 10
};

} // namespace kvt::profiling
