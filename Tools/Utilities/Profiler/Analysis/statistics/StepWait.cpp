// A step may record several waits; the last is the one before its span.
#include "StepWait.h"

#include "log/LogCodes.h"
#include "model/EventBuilder.h"

namespace kvt::profiling {

std::optional<uint64_t> findLastWait(const schema::Event& step) {
  std::optional<uint64_t> wait;
  if (const EventVector* children = step.child_events())
    for (const schema::Event* child : *children)
      if (child->event_type() == stepWait)
        wait = readTaggedValue(*child).payload;
  return wait;
}

} // namespace kvt::profiling
