// Merging the event trees of repeated executions of one graph, and averaging them.
#pragma once

#include "EventRecord.h"
#include "ExecutionEntry.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kvt::profiling {

namespace schema {
struct Event;
} // namespace schema

// Divides every payload by its record's count (truncating) and sets dataTypeU64, at every depth.
void averageEventCounts(EventList& events);

// Where identifiers first occur in one accumulated list, kept alongside it so that repeated
// merges cost no linear search per record: most records sit where they sat in the execution
// before, so that place is tried first, then the map (short lists are searched linearly).
struct IdentifierIndex {
  struct Hash {
    using is_transparent = void;
    size_t operator()(std::string_view key) const { return std::hash<std::string_view>{}(key); }
  };
  std::vector<bool> firstHolder; // by record position: no earlier record has its identifier
  std::unordered_map<std::string, size_t, Hash, std::equal_to<>> firstRecord; // long lists only
  size_t mappedRecords = 0;                                                   // in firstRecord
  std::vector<IdentifierIndex> children; // by record position, made on use
};

// The running average of one graph's executions: each execution is folded in as it comes, so
// that the executions themselves need not be kept for it.
class ExecutionAverager {
public:
  // Adds an execution still in a verified buffer: its top-level events, in log order. Each event,
  // in order, is matched with the first record of the average, as it was before this call, whose
  // identifier has the same bytes: the payloads are added as unsigned 64-bit integers whatever
  // their data types (a float by its bit pattern), the match becomes dataTypeU64 with its count
  // one higher, and the children are merged the same way. Unmatched events are appended at the
  // end, in incoming order; only they are copied out of the buffer.
  // Example: [a=1, b=2] merged with [b=5, c=7, b=1] gives [a=1, b=8 (count 3), c=7].
  void add(uint64_t duration, uint64_t timestamp, std::span<const schema::Event* const> events);
  // Consumes the accumulator: the mean duration (truncating), the latest timestamp, and the
  // merged events averaged by their counts. All zero and empty when nothing was added.
  ExecutionEntry average() &&;

private:
  void addTiming(uint64_t duration, uint64_t timestamp);

  uint64_t durationSum = 0;
  uint64_t executions = 0;
  uint64_t latestTimestamp = 0;
  EventList events;
  IdentifierIndex index; // of events
};

} // namespace kvt::profiling
