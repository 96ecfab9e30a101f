// One execution (or the finalize) of a graph: its timing and the event records it carried.
#pragma once

#include "EventRecord.h"

#include <cstdint>

namespace kvt::profiling {

struct ExecutionEntry {
  uint64_t duration = 0;
  uint64_t timestamp = 0;
  EventList events;
};
using FinalizeEntry = ExecutionEntry;

} // namespace kvt::profiling
