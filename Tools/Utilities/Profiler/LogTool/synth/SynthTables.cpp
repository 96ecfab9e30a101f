// The synthesised tables, field by field; which fields are stored is the generator's choice, the
// order they are stored in is the parser's (ParserOrderTable).
#include "SynthTables.h"

#include "ParserOrderTable.h"

namespace kvt::profiling {

namespace {

using flatbuffers::FlatBufferBuilder;
using flatbuffers::Offset;

constexpr uint32_t valueTypeUnsigned = 2; // the event's value is value_u64
constexpr int8_t visibilityAlways = 0;    // kept by every reader whose level is above 0

Offset<flatbuffers::String> addString(FlatBufferBuilder& builder, std::string_view text) {
  return builder.CreateString(text.data(), text.size());
}

} // namespace

Offset<schema::LogHeader> addHeader(FlatBufferBuilder& builder, const SynthHeader& header) {
  ParserOrderTable info;
  info.addScalar(schema::BuildInfo::VT_INFO_0, header.buildNumbers[0]);
  info.addScalar(schema::BuildInfo::VT_INFO_1, header.buildNumbers[1]);
  info.addScalar(schema::BuildInfo::VT_INFO_2, header.buildNumbers[2]);
  info.addScalar(schema::BuildInfo::VT_INFO_3, header.buildFlags);
  const Offset<schema::BuildInfo> buildInfo(info.finish(builder));
  const auto netRunVersion = addString(builder, header.netRunVersion);
  const auto backendVersion = addString(builder, header.backendVersion);

  using H = schema::LogHeader;
  ParserOrderTable table;
  table.addScalar(H::VT_TIME_SCALE, header.timeScale);
  table.addScalar(H::VT_EPOCH_TIMESTAMP_US, header.epochTimestampUs);
  table.addScalar(H::VT_STEADY_CLOCK_TIMESTAMP, header.steadyClockTimestamp);
  table.addOffset(H::VT_BUILD_INFO, buildInfo);
  table.addOffset(H::VT_NET_RUN_VERSION, netRunVersion);
  table.addOffset(H::VT_BACKEND_VERSION, backendVersion);
  return Offset<H>(table.finish(builder));
}

Offset<schema::Event> addEventTable(FlatBufferBuilder& builder, const SynthEvent& event,
                                    Offset<flatbuffers::String> identifier, EventVector children) {
  using E = schema::Event;
  ParserOrderTable table;
  table.addOffset(E::VT_IDENTIFIER, identifier);
  table.addScalar(E::VT_EVENT_TYPE, event.eventType);
  table.addScalar(E::VT_VALUE_U64, event.value);
  table.addScalar(E::VT_UNIT, event.unit);
  table.addOffset(E::VT_CHILD_EVENTS, children);
  table.addScalar(E::VT_VALUE_TYPE, valueTypeUnsigned);
  table.addScalar(E::VT_TIMESTAMP, event.timestamp);
  return Offset<E>(table.finish(builder));
}

MessageParts addMessageParts(FlatBufferBuilder& builder, const SynthMessage& message) {
  ParserOrderTable stamp;
  stamp.addScalar(schema::MessageStamp::VT_TIMESTAMP, message.startUs);
  const Offset<schema::MessageStamp> stampTable(stamp.finish(builder));
  ParserOrderTable timing;
  timing.addScalar(schema::Timing::VT_START, message.startUs);
  timing.addScalar(schema::Timing::VT_END, message.endUs);
  return {stampTable, Offset<schema::Timing>(timing.finish(builder))};
}

Offset<schema::Message> addMessageTable(FlatBufferBuilder& builder, const SynthMessage& message,
                                        const MessageParts& parts, EventVector events) {
  const auto graphName = message.graphName.empty() ? Offset<flatbuffers::String>()
                                                   : addString(builder, message.graphName);
  using M = schema::Message;
  ParserOrderTable table;
  table.addOffset(M::VT_STAMP, parts.stamp);
  table.addScalar(M::VT_METHOD_TYPE, int8_t(message.methodType));
  table.addOffset(M::VT_TIMING, parts.timing);
  table.addScalar(M::VT_VISIBILITY, visibilityAlways);
  table.addOffset(M::VT_EVENTS, events);
  table.addOffset(M::VT_GRAPH_NAME, graphName);
  return Offset<M>(table.finish(builder));
}

Offset<schema::ProfileLog> addProfileLog(FlatBufferBuilder& builder,
                                         Offset<schema::LogHeader> header, MessageVector messages) {
  ParserOrderTable table;
  table.addOffset(schema::ProfileLog::VT_HEADER, header);
  table.addOffset(schema::ProfileLog::VT_MESSAGES, messages);
  return Offset<schema::ProfileLog>(table.finish(builder));
}

} // namespace kvt::profiling
