// Turns the events of a log message into event records that own copies of everything.
#pragma once

#include "EventRecord.h"
#include "ProfileLog_generated.h"

namespace kvt::profiling {

using EventVector = flatbuffers::Vector<flatbuffers::Offset<schema::Event>>;

// The records of the message's events, in log order; empty when it has none.
EventList buildEventList(const schema::Message& message);
// The records of a nested event vector, children first, in log order.
EventList buildSubEventList(const EventVector& events);
// Sets record.value (and record.bytes for byte vectors) from the event's value fields.
void readEventValue(const schema::Event& event, EventRecord& record);

} // namespace kvt::profiling
