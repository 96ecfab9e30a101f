// Copies the event tables of a verified chunk into records, so that nothing points into the chunk
// once it is released.
#include "EventBuilder.h"

#include <bit>

namespace kvt::profiling {

namespace {

// The value types an event may name; any other value, or none, means value_u64.
enum ValueType : uint32_t {
  valueTypeI64 = 1,
  valueTypeU64 = 2,
  valueTypeF32 = 3,
  valueTypeBytes = 4,
  valueTypeF64 = 5,
};

EventRecord buildEventRecord(const schema::Event& event) {
  EventRecord record;
  if (const EventVector* children = event.child_events())
    record.children = buildSubEventList(*children);
  readEventValue(event, record);
  const flatbuffers::String* identifier = event.identifier();
  record.identifier = identifier ? identifier->str() : "null";
  if (const flatbuffers::String* message = event.message())
    record.message = message->str();
  record.eventType = event.event_type();
  record.unit = event.unit();
  record.timestamp = event.timestamp();
  record.count = 1;
  return record;
}

} // namespace

EventList buildEventList(const schema::Message& message) {
  const EventVector* events = message.events();
  return events ? buildSubEventList(*events) : EventList{};
}

EventList buildSubEventList(const EventVector& events) {
  EventList records;
  records.reserve(events.size());
  for (const schema::Event* event : events)
    records.push_back(buildEventRecord(*event));
  return records;
}

void readEventValue(const schema::Event& event, EventRecord& record) {
  switch (event.value_type()) {
  case valueTypeI64:
    record.value = {dataTypeI64, std::bit_cast<uint64_t>(event.value_i64())};
    return;
  case valueTypeF32:
    record.value = {dataTypeF32, std::bit_cast<uint32_t>(event.value_f32())};
    return;
  case valueTypeBytes:
    record.value = EventValue{}; // the byte-vector type with a zero payload
    if (const flatbuffers::Vector<uint8_t>* bytes = event.value_bytes())
      record.bytes.assign(bytes->begin(), bytes->end());
    return;
  case valueTypeF64:
    record.value = {dataTypeF64, std::bit_cast<uint64_t>(event.value_f64())};
    return;
  case valueTypeU64:
  default:
    record.value = {dataTypeU64, event.value_u64()};
    return;
  }
}

} // namespace kvt::profiling
