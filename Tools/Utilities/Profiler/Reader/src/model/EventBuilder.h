// Turns the events of a log message into event records that own copies of everything.
#pragma once

#include "EventRecord.h"
#include "ProfileLog_generated.h"

#include <span>
#include <string_view>

namespace kvt::profiling {

using EventVector = flatbuffers::Vector<flatbuffers::Offset<schema::Event>>;

// The records of the message's events, in log order; empty when it has none. Absent fields read
// 0 or empty, an absent identifier "null"; every record has count 1. The message must come from
// a verified buffer; the records keep no pointer into it.
EventList buildEventList(const schema::Message& message);
// The records of a nested event vector, in log order, each with its children built first.
EventList buildSubEventList(const EventVector& events);
// The records of some of a message's events, in the order given.
EventList buildEventRecords(std::span<const schema::Event* const> events);
// The same into records, reusing the strings and lists it held, and only depth levels deep (1:
// the events alone, 2: with their direct children): for writers that run once per execution and
// look no deeper.
void buildEventRecords(std::span<const schema::Event* const> events, unsigned depth,
                       EventList& records);
// One event's record with its whole subtree.
EventRecord buildEventRecord(const schema::Event& event);
// Sets record.value from the event's value_type: 1 value_i64 as dataTypeI64, 3 value_f32 as
// dataTypeF32 (bit pattern in the low 32 bits), 4 value_bytes into record.bytes with
// dataTypeBytes and payload 0, 5 value_f64 as dataTypeF64, anything else value_u64 as
// dataTypeU64.
void readEventValue(const schema::Event& event, EventRecord& record);
// The value readEventValue gives the record, without the bytes.
EventValue readTaggedValue(const schema::Event& event);
// The identifier a record of the event gets: "null" when absent. Points into the buffer.
std::string_view readIdentifier(const schema::Event& event);

} // namespace kvt::profiling
