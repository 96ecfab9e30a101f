// A step missing one kind of sub-event makes the whole log incompatible with the trace, whatever
// kind it is and however many complete steps came before; the golden cases pin the spans.
#include "trace/TraceEvents.h"
#include "trace/TraceDocument.h"

#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/EventRecords.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kvt::profiling {
namespace {

using testing::eventRecord;

// A step of value 10 with all four kinds of sub-event but the one of type missing.
EventRecord stepWithout(uint32_t missing) {
  EventRecord step = eventRecord("step", 10, 1, 404);
  for (uint32_t kind : {5001u, 5002u, 5003u, 5004u})
    if (kind != missing)
      step.children.push_back(eventRecord("kind", 5, 1, kind));
  return step;
}

GraphMap<ExecutionEntry> graphOf(EventList steps) {
  GraphMap<ExecutionEntry> graphs;
  graphs.getOrCreate("g").events = {eventRecord("execute", 0, 1, 0, std::move(steps))};
  return graphs;
}

TEST(TraceEvents, StepMissingASubEventKindIsIncompatible) {
  const char* const incompatible = "Log file contains incompatible data! Please provide log file "
                                   "generated using the linting profile!";
  for (uint32_t missing : {5001u, 5002u, 5003u, 5004u}) {
    SCOPED_TRACE(missing);
    testing::CapturingLogger logger;
    EXPECT_FALSE(buildTraceEvents(graphOf({stepWithout(0), stepWithout(missing)})).has_value());
    EXPECT_EQ(logger.texts(logError), std::vector<std::string>{incompatible});
    std::ostringstream out;
    EXPECT_FALSE(writeTraceJson(graphOf({stepWithout(missing)}), out));
  }
}

} // namespace
} // namespace kvt::profiling
