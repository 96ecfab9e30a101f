// A step missing one kind of sub-event makes the whole log incompatible with the trace, whatever
// kind it is and however many complete steps came before; a trace the disk cannot take whole is
// no trace either. The golden cases pin the spans.
#include "trace/TraceEvents.h"
#include "trace/TraceDocument.h"

#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/EventRecords.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <streambuf>

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

// Storage that takes capacityBytes, then refuses more, as a full disk does.
class LimitedStorage : public std::streambuf {
public:
  LimitedStorage(size_t capacityBytes, bool flushFails)
      : capacityBytes(capacityBytes), flushFails(flushFails) {}

protected:
  int_type overflow(int_type c) override {
    if (capacityBytes == 0)
      return traits_type::eof();
    --capacityBytes;
    return traits_type::not_eof(c);
  }
  int sync() override { return flushFails ? -1 : 0; }

private:
  size_t capacityBytes;
  bool flushFails;
};

TEST(TraceEvents, TraceNotWrittenWholeIsFalse) {
  struct Case {
    const char* what;
    size_t capacityBytes;
    bool flushFails;
    bool written;
  };
  constexpr size_t unlimited = std::numeric_limits<size_t>::max();
  const Case cases[] = {
      {"room for all of it", unlimited, false, true},
      {"no room at all", 0, false, false},
      {"room for part of it", 100, false, false},
      {"a flush that fails at the end", unlimited, true, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    testing::CapturingLogger logger;
    LimitedStorage storage(c.capacityBytes, c.flushFails);
    std::ostream out(&storage);
    EXPECT_EQ(writeTraceJson(graphOf({stepWithout(0)}), out), c.written);
    EXPECT_EQ(logger.texts(logError),
              c.written ? std::vector<std::string>{}
                        : std::vector<std::string>{"Trace document could not be written."});
  }
}

} // namespace
} // namespace kvt::profiling
