// Merging the event trees of repeated executions of one graph, and averaging them.
#pragma once

#include "EventModel.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace kvt::profiling {

// Merges incoming into accumulated. Each incoming record, in order, is matched with the first
// record of accumulated, as it was before this call, whose identifier has the same bytes: the
// payloads are added as unsigned 64-bit integers whatever their data types (a float by its bit
// pattern), the match becomes dataTypeU64 with its count one higher, and the children are merged
// the same way. Unmatched records are appended at the end, in incoming order.
// Example: [a=1, b=2] merged with [b=5, c=7, b=1] gives [a=1, b=8 (count 3), c=7].
void mergeEventLists(EventList& accumulated, EventList incoming);

// Divides every payload by its record's count (truncating) and sets dataTypeU64, at every depth.
void averageEventCounts(EventList& events);

// Where identifiers first occur in one accumulated list, kept alongside it so that repeated
// merges cost no linear search per record. Short lists are searched linearly instead.
struct IdentifierIndex {
  std::unordered_map<std::string, size_t> firstRecord; // covers the records before indexedRecords
  size_t indexedRecords = 0;
  std::vector<std::unique_ptr<IdentifierIndex>> children; // by record position, made on use
};

// The running average of one graph's executions: each execution is folded in as it comes, so
// that the executions themselves need not be kept for it.
class ExecutionAverager {
public:
  void add(ExecutionEntry execution);
  // Consumes the accumulator: the mean duration (truncating), the latest timestamp, and the
  // merged events averaged by their counts. All zero and empty when nothing was added.
  ExecutionEntry average() &&;

private:
  uint64_t durationSum = 0;
  uint64_t executions = 0;
  uint64_t latestTimestamp = 0;
  EventList events;
  IdentifierIndex index; // of events
};

// The average of executions, folded in log order.
ExecutionEntry averageExecutions(const std::vector<ExecutionEntry>& executions);

} // namespace kvt::profiling
