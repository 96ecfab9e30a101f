// The codes a profiling log carries in its messages and events, shared by the reader and the
// tools that write logs.
#pragma once

#include <cstdint>

namespace kvt::profiling {

// A message's method type: which step of the run it records.
enum class MethodType : int8_t {
  execute = 1,
  finalize = 2,
  executeWithQueueWait = 3,
  init = 4,
  deinit = 5,
  unnamedTiming = 6,
  composeGraphs = 7,
  executeOverall = 8,
  executeCombined = 9,
  libLoad = 10,
};

// An event's value type: which field holds its value; any other value, or none, means value_u64.
enum ValueType : uint32_t {
  valueTypeI64 = 1,
  valueTypeU64 = 2,
  valueTypeF32 = 3,
  valueTypeBytes = 4,
  valueTypeF64 = 5,
};

// Event types that mean something to the reader.
enum EventType : uint32_t {
  initEvent = 100,                // a graph message's event that belongs to the init step
  finalizeEvent = 300,            // a combined message's event that belongs to the finalize step
  executionStep = 404,            // its value is the step's execution span, its identifier the name
  queueWaitEvent = 405,           // the time an execution waited in the queue
  stepWait = 5001,                // the wait before the step
  executionBackground = 5002,     // background activity during the execution
  waitBackground = 5003,          // background activity during the wait
  resourceMask = 5004,            // the back-end resources the step used, as a bit mask
  executionBackgroundItem = 5005, // one item under executionBackground, listed by name
  waitBackgroundItem = 5006,      // one item under waitBackground, listed by name
};

// Records of these types are internal to the back end and never reported by the trace reader.
inline constexpr uint32_t firstHiddenEventType = 9000;
inline constexpr uint32_t lastHiddenEventType = 9009;

} // namespace kvt::profiling
