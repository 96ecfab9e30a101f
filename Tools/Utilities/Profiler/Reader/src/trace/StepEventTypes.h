// The event types of an execution step's detailed sub-events, which the trace is built from.
#pragma once

#include <cstdint>

namespace kvt::profiling {

enum StepEventType : uint32_t {
  executionStep = 404,            // its value is the step's execution span, its identifier the name
  stepWait = 5001,                // the wait before the step
  executionBackground = 5002,     // background activity during the execution
  waitBackground = 5003,          // background activity during the wait
  resourceMask = 5004,            // the back-end resources the step used, as a bit mask
  executionBackgroundItem = 5005, // one item under executionBackground, listed by name
  waitBackgroundItem = 5006,      // one item under waitBackground, listed by name
};

// Records of these types are internal to the back end and never reported.
inline constexpr uint32_t firstHiddenEventType = 9000;
inline constexpr uint32_t lastHiddenEventType = 9009;

} // namespace kvt::profiling
