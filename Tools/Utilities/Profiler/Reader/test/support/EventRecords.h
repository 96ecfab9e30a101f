// Event records for hand-built models, so that output tests need no log.
#pragma once

#include "model/EventRecord.h"

#include <cstdint>
#include <string>
#include <utility>

namespace kvt::profiling::testing {

inline constexpr uint32_t unitMicroseconds = 1;

// A record with an unsigned 64-bit value, as averaging leaves every record.
inline EventRecord eventRecord(std::string identifier, uint64_t value,
                               uint32_t unit = unitMicroseconds, uint32_t eventType = 0,
                               EventList children = {}) {
  EventRecord record;
  record.eventType = eventType;
  record.value = {dataTypeU64, value};
  record.identifier = std::move(identifier);
  record.unit = unit;
  record.children = std::move(children);
  return record;
}

} // namespace kvt::profiling::testing
