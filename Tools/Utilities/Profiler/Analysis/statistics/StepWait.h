// The wait of an execution step as the statistics and the long table take it.
#pragma once

#include "ProfileLog_generated.h"

#include <cstdint>
#include <optional>

namespace kvt::profiling {

// The value of the step's last wait child (event type 5001), as the trace takes it; none without
// one.
std::optional<uint64_t> findLastWait(const schema::Event& step);

} // namespace kvt::profiling
