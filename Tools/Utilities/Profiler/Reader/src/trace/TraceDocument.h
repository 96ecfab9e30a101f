// The trace file's text: a JSON object whose one member "traceEvents" holds every span.
#pragma once

#include "model/EventModel.h"

#include <ostream>

namespace kvt::profiling {

// Writes the trace of the averaged executions to out, pretty-printed with 4 blanks per level and
// no final line end. False, with nothing written, when the log is incompatible (reported by
// buildTraceEvents) or the text could not be produced (reported here).
bool writeTraceJson(const GraphMap<ExecutionEntry>& averageExecutionByGraph, std::ostream& out);

} // namespace kvt::profiling
