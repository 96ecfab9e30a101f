// The tables of a synthesised log, built in the order and layout that FlatBuffers' schema parser
// gives the same content written as JSON in schema order: a table's strings, sub-tables and
// vectors come first, in field order, then the table itself.
#pragma once

#include "ProfileLog_generated.h"
#include "log/LogCodes.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace kvt::profiling {

using EventVector = flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<schema::Event>>>;
using MessageVector =
    flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<schema::Message>>>;

struct SynthHeader {
  float timeScale = 0;
  uint64_t epochTimestampUs = 0;
  uint64_t steadyClockTimestamp = 0;
  std::array<uint32_t, 3> buildNumbers{}; // build_info's info_0 to info_2
  uint8_t buildFlags = 0;                 // build_info's info_3
  std::string_view netRunVersion;
  std::string_view backendVersion;
};

// A back-end event whose value is an unsigned 64-bit number.
struct SynthEvent {
  std::string_view identifier;
  uint32_t eventType = 0;
  uint64_t value = 0;
  uint32_t unit = 0; // 1 us, 2 bytes, 3 cycles, 4 count
  uint64_t timestamp = 0;
};

// A message whose stamp is its start; graphName empty for messages of the whole run.
struct SynthMessage {
  MethodType methodType = MethodType::execute;
  uint64_t startUs = 0;
  uint64_t endUs = 0;
  std::string_view graphName;
};

flatbuffers::Offset<schema::LogHeader> addHeader(flatbuffers::FlatBufferBuilder& builder,
                                                 const SynthHeader& header);

// The stored table of an event whose identifier string and children are already in the buffer.
flatbuffers::Offset<schema::Event>
addEventTable(flatbuffers::FlatBufferBuilder& builder, const SynthEvent& event,
              flatbuffers::Offset<flatbuffers::String> identifier, EventVector children);

// An event; addChildren() builds its child vector (or returns a null offset for none) after the
// identifier, as the parser would meet them.
template <typename AddChildren>
flatbuffers::Offset<schema::Event> addEvent(flatbuffers::FlatBufferBuilder& builder,
                                            const SynthEvent& event, AddChildren&& addChildren) {
  const auto identifier = builder.CreateString(event.identifier.data(), event.identifier.size());
  const EventVector children = addChildren();
  return addEventTable(builder, event, identifier, children);
}

inline flatbuffers::Offset<schema::Event> addEvent(flatbuffers::FlatBufferBuilder& builder,
                                                   const SynthEvent& event) {
  return addEvent(builder, event, [] { return EventVector(); });
}

// The stamp and timing tables of a message, which precede its events in the buffer.
struct MessageParts {
  flatbuffers::Offset<schema::MessageStamp> stamp;
  flatbuffers::Offset<schema::Timing> timing;
};

MessageParts addMessageParts(flatbuffers::FlatBufferBuilder& builder, const SynthMessage& message);

flatbuffers::Offset<schema::Message> addMessageTable(flatbuffers::FlatBufferBuilder& builder,
                                                     const SynthMessage& message,
                                                     const MessageParts& parts, EventVector events);

// A message; addEvents() builds its event vector (or returns a null offset for none).
template <typename AddEvents>
flatbuffers::Offset<schema::Message> addMessage(flatbuffers::FlatBufferBuilder& builder,
                                                const SynthMessage& message,
                                                AddEvents&& addEvents) {
  const MessageParts parts = addMessageParts(builder, message);
  const EventVector events = addEvents();
  return addMessageTable(builder, message, parts, events);
}

// The root of a chunk; header may be null.
flatbuffers::Offset<schema::ProfileLog> addProfileLog(flatbuffers::FlatBufferBuilder& builder,
                                                      flatbuffers::Offset<schema::LogHeader> header,
                                                      MessageVector messages);

} // namespace kvt::profiling
