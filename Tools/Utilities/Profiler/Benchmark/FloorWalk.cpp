// The walk uses the reader's own chunk reader and verifier, then the schema's accessors.
#include "FloorWalk.h"

#include "log/FlatBufferReaderUtil.h"
#include "log/LogChunkReader.h"

#include <bit>

namespace kvt::profiling {

namespace {

using EventVector = flatbuffers::Vector<flatbuffers::Offset<schema::Event>>;

// A string or byte vector: its length and its first byte, which brings it into the cache.
template <typename Bytes> uint64_t touch(const Bytes* bytes) {
  if (!bytes || bytes->size() == 0)
    return 0;
  return bytes->size() + uint8_t(*bytes->data());
}

void walkEvents(const EventVector* events, LogWalk& walk) {
  if (!events)
    return;
  for (const schema::Event* event : *events) {
    ++walk.events;
    walk.fieldSum +=
        touch(event->identifier()) + event->event_type() + event->value_u64() + event->unit() +
        event->value_type() + std::bit_cast<uint64_t>(event->value_i64()) +
        std::bit_cast<uint32_t>(event->value_f32()) + touch(event->value_bytes()) +
        touch(event->message()) + event->timestamp() + std::bit_cast<uint64_t>(event->value_f64());
    walkEvents(event->child_events(), walk);
  }
}

void walkMessage(const schema::Message& message, LogWalk& walk) {
  ++walk.messages;
  if (const schema::MessageStamp* stamp = message.stamp())
    walk.fieldSum += stamp->timestamp() + stamp->stamp_extra();
  if (const schema::Timing* timing = message.timing())
    walk.fieldSum += timing->start() + timing->end() + timing->timing_extra_0() +
                     timing->timing_extra_1() + timing->timing_flags();
  walk.fieldSum +=
      uint8_t(message.method_type()) + uint8_t(message.visibility()) + touch(message.graph_name());
  walkEvents(message.events(), walk);
}

} // namespace

std::optional<LogWalk> walkLog(const std::string& path) {
  LogChunkReader file;
  if (!file.open(path))
    return std::nullopt;
  FlatBufferReaderUtil chunk;
  LogWalk walk;
  for (;;) {
    switch (file.readNextChunk()) {
    case LogChunkReader::Status::endOfFile:
      return walk;
    case LogChunkReader::Status::oversized:
    case LogChunkReader::Status::cutShort:
    case LogChunkReader::Status::outOfMemory:
      return std::nullopt;
    case LogChunkReader::Status::chunk:
      if (!chunk.loadBuffer(file.chunk()))
        return std::nullopt;
      ++walk.chunks;
      walk.largestChunkBytes = std::max<uint64_t>(walk.largestChunkBytes, file.chunk().size());
      while (const schema::Message* message = chunk.nextMessage())
        walkMessage(*message, walk);
      break;
    }
  }
}

} // namespace kvt::profiling
