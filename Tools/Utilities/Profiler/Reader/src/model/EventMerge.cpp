// Merging by identifier, straight from a verified buffer. An index from identifier to first record
// keeps repeated merges of wide lists linear; its results are those of a search from the start of
// the list.
#include "EventMerge.h"

#include "EventBuilder.h"

#include <algorithm>

namespace kvt::profiling {

namespace {

// Lists up to this many records are searched linearly; an index would cost more than it saves.
constexpr size_t linearSearchRecords = 16;

// Incoming events still in the buffer: some top-level events of a message, or a nested vector.
class BufferSource {
public:
  explicit BufferSource(std::span<const schema::Event* const> topLevel)
      : topLevel(topLevel), count(topLevel.size()) {}
  explicit BufferSource(const EventVector* nested)
      : nested(nested), count(nested ? nested->size() : 0) {}
  size_t size() const { return count; }
  std::string_view identifier(size_t i) const { return readIdentifier(event(i)); }
  uint64_t payload(size_t i) const { return readTaggedValue(event(i)).payload; }
  BufferSource children(size_t i) const { return BufferSource(event(i).child_events()); }
  EventRecord copy(size_t i) const { return buildEventRecord(event(i)); }

private:
  const schema::Event& event(size_t i) const {
    return nested ? *nested->Get(flatbuffers::uoffset_t(i)) : *topLevel[i];
  }

  std::span<const schema::Event* const> topLevel;
  const EventVector* nested = nullptr;
  size_t count = 0;
};

// The position of the first of the first `existing` records with identifier; existing if none.
size_t searchFirstRecord(const IdentifierIndex& index, const EventList& records, size_t existing,
                         std::string_view identifier) {
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

// Brings the index up to the first `existing` records of the list.
void catchUp(IdentifierIndex& index, const EventList& records, size_t existing) {
  if (existing > linearSearchRecords) {
    for (size_t i = index.mappedRecords; i < existing; ++i)
      index.firstRecord.try_emplace(records[i].identifier, i); // keeps an earlier holder
    index.mappedRecords = existing;
  }
  for (size_t i = index.firstHolder.size(); i < existing; ++i)
    index.firstHolder.push_back(
        searchFirstRecord(index, records, existing, records[i].identifier) == i);
}

// searchFirstRecord, trying first the place where the record is likely to be.
size_t findFirstRecord(const IdentifierIndex& index, const EventList& records, size_t existing,
                       std::string_view identifier, size_t hint) {
  if (hint < existing && index.firstHolder[hint] && records[hint].identifier == identifier)
    return hint;
  return searchFirstRecord(index, records, existing, identifier);
}

IdentifierIndex& getOrCreateChildIndex(IdentifierIndex& index, size_t position, size_t existing) {
  if (index.children.size() < existing)
    index.children.resize(existing);
  return index.children[position];
}

void mergeEventLists(EventList& accumulated, IdentifierIndex& index, const BufferSource& incoming) {
  // Only records that existed before this merge may match; the unmatched join them at the end,
  // in incoming order, as they come.
  const size_t existing = accumulated.size();
  catchUp(index, accumulated, existing);
  for (size_t i = 0; i < incoming.size(); ++i) {
    const size_t position =
        findFirstRecord(index, accumulated, existing, incoming.identifier(i), i);
    if (position == existing) {
      accumulated.push_back(incoming.copy(i));
      continue;
    }
    EventRecord& match = accumulated[position];
    match.value.payload += incoming.payload(i); // bit patterns added, floats included
    match.value.dataType = dataTypeU64;
    ++match.count;
    const BufferSource children = incoming.children(i);
    if (children.size() != 0)
      mergeEventLists(match.children, getOrCreateChildIndex(index, position, existing), children);
  }
}

} // namespace

void averageEventCounts(EventList& events) {
  for (EventRecord& record : events) {
    record.value.payload /= record.count;
    record.value.dataType = dataTypeU64;
    averageEventCounts(record.children);
  }
}

void ExecutionAverager::add(uint64_t duration, uint64_t timestamp,
                            std::span<const schema::Event* const> topLevel) {
  addTiming(duration, timestamp);
  mergeEventLists(events, index, BufferSource(topLevel));
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

void ExecutionAverager::addTiming(uint64_t duration, uint64_t timestamp) {
  durationSum += duration;
  ++executions;
  latestTimestamp = timestamp;
}

} // namespace kvt::profiling
