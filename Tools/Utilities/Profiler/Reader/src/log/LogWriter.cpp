// Building chunks field by field, so that any field, required or not, can be left out.
#include "LogWriter.h"

#include "ProfileLog_generated.h"

#include <algorithm>
#include <fstream>

namespace kvt::profiling {

namespace {

using flatbuffers::FlatBufferBuilder;
using flatbuffers::Offset;
using flatbuffers::voffset_t;

template <typename T>
void addScalar(FlatBufferBuilder& builder, voffset_t field, const std::optional<T>& value) {
  if (value)
    builder.AddElement<T>(field, *value);
}

Offset<flatbuffers::String> createString(FlatBufferBuilder& builder,
                                         const std::optional<std::string>& text) {
  return text ? builder.CreateString(*text) : Offset<flatbuffers::String>();
}

Offset<flatbuffers::Vector<Offset<schema::Event>>>
createEvents(FlatBufferBuilder& builder, const std::optional<std::vector<EventSpec>>& events);

Offset<schema::Event> createEvent(FlatBufferBuilder& builder, const EventSpec& event) {
  using E = schema::Event;
  const auto identifier = createString(builder, event.identifier);
  const auto children = createEvents(builder, event.children);
  const auto bytes = event.valueBytes ? builder.CreateVector(*event.valueBytes)
                                      : Offset<flatbuffers::Vector<uint8_t>>();
  const auto message = createString(builder, event.message);
  const auto table = builder.StartTable();
  builder.AddOffset(E::VT_IDENTIFIER, identifier);
  addScalar(builder, E::VT_EVENT_TYPE, event.eventType);
  addScalar(builder, E::VT_VALUE_U64, event.valueU64);
  addScalar(builder, E::VT_UNIT, event.unit);
  builder.AddOffset(E::VT_CHILD_EVENTS, children);
  addScalar(builder, E::VT_VALUE_TYPE, event.valueType);
  addScalar(builder, E::VT_VALUE_I64, event.valueI64);
  addScalar(builder, E::VT_VALUE_F32, event.valueF32);
  builder.AddOffset(E::VT_VALUE_BYTES, bytes);
  builder.AddOffset(E::VT_MESSAGE, message);
  addScalar(builder, E::VT_TIMESTAMP, event.timestamp);
  addScalar(builder, E::VT_VALUE_F64, event.valueF64);
  return Offset<schema::Event>(builder.EndTable(table));
}

Offset<flatbuffers::Vector<Offset<schema::Event>>>
createEvents(FlatBufferBuilder& builder, const std::optional<std::vector<EventSpec>>& events) {
  if (!events)
    return {};
  std::vector<Offset<schema::Event>> offsets;
  offsets.reserve(events->size());
  for (const EventSpec& event : *events)
    offsets.push_back(createEvent(builder, event));
  return builder.CreateVector(offsets);
}

Offset<schema::Message> createMessage(FlatBufferBuilder& builder, const MessageSpec& message) {
  using M = schema::Message;
  Offset<schema::MessageStamp> stamp;
  if (message.stampTimestamp) {
    const auto table = builder.StartTable();
    builder.AddElement<uint64_t>(schema::MessageStamp::VT_TIMESTAMP, *message.stampTimestamp);
    stamp = Offset<schema::MessageStamp>(builder.EndTable(table));
  }
  Offset<schema::Timing> timing;
  if (message.timing) {
    const auto table = builder.StartTable();
    addScalar(builder, schema::Timing::VT_START, message.timing->start);
    addScalar(builder, schema::Timing::VT_END, message.timing->end);
    timing = Offset<schema::Timing>(builder.EndTable(table));
  }
  const auto events = createEvents(builder, message.events);
  const auto graphName = createString(builder, message.graphName);
  const auto table = builder.StartTable();
  builder.AddOffset(M::VT_STAMP, stamp);
  addScalar(builder, M::VT_METHOD_TYPE, message.methodType);
  builder.AddOffset(M::VT_TIMING, timing);
  addScalar(builder, M::VT_VISIBILITY, message.visibility);
  builder.AddOffset(M::VT_EVENTS, events);
  builder.AddOffset(M::VT_GRAPH_NAME, graphName);
  return Offset<schema::Message>(builder.EndTable(table));
}

Offset<schema::LogHeader> createHeader(FlatBufferBuilder& builder, const HeaderSpec& header) {
  using H = schema::LogHeader;
  const auto netRun = createString(builder, header.netRunVersion);
  const auto backend = createString(builder, header.backendVersion);
  const auto table = builder.StartTable();
  addScalar(builder, H::VT_TIME_SCALE, header.timeScale);
  addScalar(builder, H::VT_EPOCH_TIMESTAMP_US, header.epochTimestampUs);
  addScalar(builder, H::VT_STEADY_CLOCK_TIMESTAMP, header.steadyClockTimestamp);
  builder.AddOffset(H::VT_NET_RUN_VERSION, netRun);
  builder.AddOffset(H::VT_BACKEND_VERSION, backend);
  return Offset<schema::LogHeader>(builder.EndTable(table));
}

} // namespace

std::vector<uint8_t> buildChunk(const ChunkSpec& chunk) {
  FlatBufferBuilder builder;
  const auto header =
      chunk.header ? createHeader(builder, *chunk.header) : Offset<schema::LogHeader>();
  Offset<flatbuffers::Vector<Offset<schema::Message>>> messages;
  if (chunk.messages) {
    std::vector<Offset<schema::Message>> offsets;
    offsets.reserve(chunk.messages->size());
    for (const MessageSpec& message : *chunk.messages)
      offsets.push_back(createMessage(builder, message));
    messages = builder.CreateVector(offsets);
  }
  const auto table = builder.StartTable();
  builder.AddOffset(schema::ProfileLog::VT_HEADER, header);
  builder.AddOffset(schema::ProfileLog::VT_MESSAGES, messages);
  builder.Finish(Offset<schema::ProfileLog>(builder.EndTable(table)));
  return frameChunk({builder.GetBufferPointer(), builder.GetSize()});
}

std::vector<uint8_t> frameChunk(std::span<const uint8_t> buffer) {
  const auto size = uint32_t(buffer.size());
  std::vector<uint8_t> chunk(4 + buffer.size());
  for (int i = 0; i < 4; ++i)
    chunk[i] = uint8_t(size >> (8 * i));
  std::copy(buffer.begin(), buffer.end(), chunk.begin() + 4);
  return chunk;
}

std::vector<uint8_t> buildLog(std::span<const ChunkSpec> chunks) {
  std::vector<uint8_t> log;
  for (const ChunkSpec& chunk : chunks) {
    const std::vector<uint8_t> bytes = buildChunk(chunk);
    log.insert(log.end(), bytes.begin(), bytes.end());
  }
  return log;
}

bool writeFileBytes(const std::string& path, std::span<const uint8_t> bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
  return bool(file.flush());
}

} // namespace kvt::profiling
