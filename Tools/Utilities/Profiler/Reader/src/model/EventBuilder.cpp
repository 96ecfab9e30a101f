// Copies the event tables of a verified chunk into records, so that nothing points into the chunk
// once it is released.
#include "EventBuilder.h"

#include "log/LogCodes.h"

#include <bit>

namespace kvt::profiling {

namespace {

constexpr unsigned everyLevel = ~0u; // depth of a build that copies whole subtrees

void fillRecord(const schema::Event& event, unsigned depth, EventRecord& record);

// Fills records from a range of event pointers, in its order, reusing what records held.
template <typename Events>
void fillRecords(const Events& events, unsigned depth, EventList& records) {
  records.resize(events.size());
  auto record = records.begin();
  for (const schema::Event* event : events)
    fillRecord(*event, depth, *record++);
}

void fillRecord(const schema::Event& event, unsigned depth, EventRecord& record) {
  const EventVector* children = depth > 1 ? event.child_events() : nullptr;
  if (children)
    fillRecords(*children, depth - 1, record.children);
  else
    record.children.clear();
  record.bytes.clear();
  readEventValue(event, record);
  record.identifier = readIdentifier(event);
  if (const flatbuffers::String* message = event.message())
    record.message.assign(message->data(), message->size());
  else
    record.message.clear();
  record.eventType = event.event_type();
  record.unit = event.unit();
  record.timestamp = event.timestamp();
  record.count = 1;
}

} // namespace

EventList buildEventList(const schema::Message& message) {
  const EventVector* events = message.events();
  return events ? buildSubEventList(*events) : EventList{};
}

EventList buildSubEventList(const EventVector& events) {
  EventList records;
  fillRecords(events, everyLevel, records);
  return records;
}

EventList buildEventRecords(std::span<const schema::Event* const> events) {
  EventList records;
  fillRecords(events, everyLevel, records);
  return records;
}

void buildEventRecords(std::span<const schema::Event* const> events, unsigned depth,
                       EventList& records) {
  fillRecords(events, depth, records);
}

EventRecord buildEventRecord(const schema::Event& event) {
  EventRecord record;
  fillRecord(event, everyLevel, record);
  return record;
}

void readEventValue(const schema::Event& event, EventRecord& record) {
  record.value = readTaggedValue(event);
  if (event.value_type() == valueTypeBytes)
    if (const flatbuffers::Vector<uint8_t>* bytes = event.value_bytes())
      record.bytes.assign(bytes->begin(), bytes->end());
}

EventValue readTaggedValue(const schema::Event& event) {
  switch (event.value_type()) {
  case valueTypeI64:
    return {dataTypeI64, std::bit_cast<uint64_t>(event.value_i64())};
  case valueTypeF32:
    return {dataTypeF32, std::bit_cast<uint32_t>(event.value_f32())};
  case valueTypeBytes:
    return EventValue{}; // the byte-vector type with a zero payload
  case valueTypeF64:
    return {dataTypeF64, std::bit_cast<uint64_t>(event.value_f64())};
  case valueTypeU64:
  default:
    return {dataTypeU64, event.value_u64()};
  }
}

std::string_view readIdentifier(const schema::Event& event) {
  const flatbuffers::String* identifier = event.identifier();
  return identifier ? std::string_view(identifier->data(), identifier->size()) : "null";
}

} // namespace kvt::profiling
