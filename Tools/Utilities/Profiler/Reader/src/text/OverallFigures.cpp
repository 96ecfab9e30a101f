// The overall-execution rate and the library-load latency.
#include "OverallFigures.h"

namespace kvt::profiling::text_internal {

std::optional<float> inferencesPerSecond(const RunLevelSlot& executeOverall) {
  const EventList& events = executeOverall.events;
  if (!executeOverall.present || events.size() < 2)
    return std::nullopt;
  const bool firstIsDuration = events[0].identifier == "duration";
  const uint64_t duration = events[firstIsDuration ? 0 : 1].value.payload;
  const uint64_t count = events[firstIsDuration ? 1 : 0].value.payload;
  if (duration == 0)
    return 0.0f;
  // Single precision on purpose: the printed digits depend on it.
  return float(count) * 1000000.0f / float(duration);
}

std::optional<uint64_t> backendLatencyUs(const RunLevelSlot& libLoad) {
  if (!libLoad.present || libLoad.events.empty())
    return std::nullopt;
  return libLoad.events.front().value.payload;
}

} // namespace kvt::profiling::text_internal
