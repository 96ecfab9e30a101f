// The trace file's text: a JSON object whose one member "traceEvents" holds every span.
#pragma once

#include "model/EventModel.h"

#include <ostream>

namespace kvt::profiling {

// Writes the trace of the averaged executions to out, pretty-printed with 4 blanks per level,
// then a line end, and flushes out. False, with nothing written, when the log is incompatible
// (reported by buildTraceEvents); false with "Trace document could not be written." when the
// text could not be produced, or out did not take it whole (a full disk: out holds part of it).
bool writeTraceJson(const GraphMap<ExecutionEntry>& averageExecutionByGraph, std::ostream& out);

} // namespace kvt::profiling
