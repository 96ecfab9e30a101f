// Merging by identifier. An index from identifier to first record keeps repeated merges of wide
// lists linear; its results are those of a search from the start of the list.
#include "EventMerge.h"

#include <algorithm>
#include <utility>

namespace kvt::profiling {

namespace {

// Lists up to this many records are searched linearly; an index would cost more than it saves.
constexpr size_t linearSearchRecords = 16;

// Brings the index up to the first `existing` records of a long list; no-op for short lists.
void catchUp(IdentifierIndex& index, const EventList& records, size_t existing) {
  if (existing <= linearSearchRecords)
    return;
  for (size_t i = index.indexedRecords; i < existing; ++i)
    index.firstRecord.try_emplace(records[i].identifier, i); // keeps an earlier holder
  index.indexedRecords = existing;
}

// The position of the first of the first `existing` records with identifier; existing if none.
size_t findFirstRecord(const IdentifierIndex& index, const EventList& records, size_t existing,
                       const std::string& identifier) {
  if (existing <= linearSearchRecords) {
    const auto end = records.begin() + ptrdiff_t(existing);
    const auto found = std::find_if(records.begin(), end, [&](const EventRecord& record) {
      return record.identifier == identifier;
    });
    return size_t(found - records.begin());
  }
  const auto found = index.firstRecord.find(identifier);
  return found == index.firstRecord.end() ? existing : found->second;
}

IdentifierIndex& getOrCreateChildIndex(IdentifierIndex& index, size_t position, size_t existing) {
  if (index.children.size() < existing)
    index.children.resize(existing);
  std::unique_ptr<IdentifierIndex>& child = index.children[position];
  if (!child)
    child = std::make_unique<IdentifierIndex>();
  return *child;
}

void mergeIndexed(EventList& accumulated, IdentifierIndex& index, EventList incoming) {
  // Only records that existed before this merge may match; the unmatched join them afterwards.
  const size_t existing = accumulated.size();
  catchUp(index, accumulated, existing);
  EventList setAside;
  for (EventRecord& record : incoming) {
    const size_t position = findFirstRecord(index, accumulated, existing, record.identifier);
    if (position == existing) {
      setAside.push_back(std::move(record));
      continue;
    }
    EventRecord& match = accumulated[position];
    match.value.payload += record.value.payload; // bit patterns added, floats included
    match.value.dataType = dataTypeU64;
    ++match.count;
    if (!record.children.empty())
      mergeIndexed(match.children, getOrCreateChildIndex(index, position, existing),
                   std::move(record.children));
  }
  accumulated.insert(accumulated.end(), std::make_move_iterator(setAside.begin()),
                     std::make_move_iterator(setAside.end()));
}

} // namespace

void mergeEventLists(EventList& accumulated, EventList incoming) {
  IdentifierIndex index;
  mergeIndexed(accumulated, index, std::move(incoming));
}

void averageEventCounts(EventList& events) {
  for (EventRecord& record : events) {
    record.value.payload /= record.count;
    record.value.dataType = dataTypeU64;
    averageEventCounts(record.children);
  }
}

void ExecutionAverager::add(ExecutionEntry execution) {
  durationSum += execution.duration;
  ++executions;
  latestTimestamp = execution.timestamp;
  mergeIndexed(events, index, std::move(execution.events));
}

ExecutionEntry ExecutionAverager::average() && {
  ExecutionEntry result;
  if (executions == 0)
    return result;
  result.duration = durationSum / executions;
  result.timestamp = latestTimestamp;
  result.events = std::move(events);
  averageEventCounts(result.events);
  return result;
}

ExecutionEntry averageExecutions(const std::vector<ExecutionEntry>& executions) {
  ExecutionAverager averager;
  for (const ExecutionEntry& execution : executions)
    averager.add(execution);
  return std::move(averager).average();
}

} // namespace kvt::profiling
