// The values computed once after the last message: per-graph averages, queue waits, init timing.
#pragma once

#include "EventModel.h"

#include <ostream>

namespace kvt::profiling {

// Runs the three derived-value steps in order; warnings for the user go to warnings.
void computeDerivedValues(EventModel& model, std::ostream& warnings);

} // namespace kvt::profiling
