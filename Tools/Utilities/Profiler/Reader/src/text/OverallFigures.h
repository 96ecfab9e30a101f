// The figures of the overall-execution and library-load records, which the summary and the CSV
// event log both print.
#pragma once

#include "model/EventModel.h"

#include <cstdint>
#include <optional>

namespace kvt::profiling::text_internal {

// Inferences per second from the first two events: the one named "duration" (else the second)
// is the total duration D, the other the inference count N; N * 1e6 / D in single precision,
// 0 when D is 0. Empty when the record is absent or has fewer than 2 events.
// {"duration" = 1450, "count" = 1} gives 689.655151.
std::optional<float> inferencesPerSecond(const RunLevelSlot& executeOverall);

// The back-end library load latency in microseconds: the first event's value. Empty when the
// record is absent or has no event.
std::optional<uint64_t> backendLatencyUs(const RunLevelSlot& libLoad);

} // namespace kvt::profiling::text_internal
