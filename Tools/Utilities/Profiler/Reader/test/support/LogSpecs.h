// Short descriptions of log messages and events for the tests that build their logs in code.
#pragma once

#include "log/LogWriter.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kvt::profiling::testing {

inline EventSpec eventSpec(std::string identifier, uint32_t eventType = 0, uint64_t value = 0,
                           std::vector<EventSpec> children = {}) {
  EventSpec described;
  described.identifier = std::move(identifier);
  described.eventType = eventType;
  described.valueU64 = value;
  if (!children.empty())
    described.children = std::move(children);
  return described;
}

// A message of graph "g", stamped at timestamp, lasting timing.end - timing.start.
inline MessageSpec messageSpec(int8_t methodType, std::vector<EventSpec> events = {},
                               uint64_t timestamp = 7000, TimingSpec timing = {100, 110}) {
  MessageSpec described;
  described.stampTimestamp = timestamp;
  described.methodType = methodType;
  described.timing = timing;
  described.events = std::move(events);
  described.graphName = "g";
  return described;
}

inline ChunkSpec chunkOf(std::vector<MessageSpec> messages) {
  ChunkSpec chunk;
  chunk.messages = std::move(messages);
  return chunk;
}

} // namespace kvt::profiling::testing
