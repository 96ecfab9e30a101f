// The trace file's text: a JSON object whose one member "traceEvents" holds every span.
#pragma once

#include "model/EventModel.h"

#include <optional>
#include <string>

namespace kvt::profiling {

// The trace of the averaged executions, pretty-printed with 4 blanks per level and no final
// line end. Empty when the log is incompatible (reported by buildTraceEvents) or the text
// could not be produced (reported here).
std::optional<std::string> writeTraceJson(const GraphMap<ExecutionEntry>& averageExecutionByGraph);

} // namespace kvt::profiling
