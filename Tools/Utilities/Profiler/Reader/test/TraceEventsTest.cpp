// Execution steps into Foreground and Background spans, and the trace's JSON text.
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

struct StepSpec {
  std::string name{};
  uint64_t value = 0;
  uint64_t wait = 0;
  uint64_t waitBackground = 0;
  std::vector<std::string> waitItems{};
  uint64_t executionBackground = 0;
  std::vector<std::string> executionItems{};
  uint64_t mask = 0;
};

EventList itemsOf(const std::vector<std::string>& names, uint32_t itemType) {
  EventList items;
  for (const std::string& name : names)
    items.push_back(eventRecord(name, 0, 1, itemType));
  return items;
}

// An execution step with all four kinds of sub-event.
EventRecord step(const StepSpec& described) {
  return eventRecord(described.name, described.value, 1, 404,
                     {eventRecord("wait", described.wait, 1, 5001),
                      eventRecord("exec bg", described.executionBackground, 1, 5002,
                                  itemsOf(described.executionItems, 5005)),
                      eventRecord("wait bg", described.waitBackground, 1, 5003,
                                  itemsOf(described.waitItems, 5006)),
                      eventRecord("resources", described.mask, 1, 5004)});
}

GraphMap<ExecutionEntry> graphOf(EventList steps) {
  GraphMap<ExecutionEntry> graphs;
  graphs.getOrCreate("g").events = {eventRecord("execute", 0, 1, 0, std::move(steps))};
  return graphs;
}

// The trace text, or none when writeTraceJson refused.
std::optional<std::string> traceJson(const GraphMap<ExecutionEntry>& averages) {
  std::ostringstream out;
  if (!writeTraceJson(averages, out))
    return std::nullopt;
  return out.str();
}

// One line per span: row, name, start + duration, then colour and resources when present.
std::vector<std::string> describe(const std::vector<TraceEvent>& events) {
  std::vector<std::string> lines;
  for (const TraceEvent& event : events) {
    std::string line = std::string(event.foreground ? "F " : "B ") + "[" + event.name + "] " +
                       std::to_string(event.start) + "+" + std::to_string(event.duration);
    if (!event.colour.empty())
      line += " " + event.colour;
    if (!event.resources.empty())
      line += " {" + event.resources + "}";
    lines.push_back(line);
  }
  return lines;
}

TEST(TraceEvents, CursorAndSubEventRules) {
  GraphMap<ExecutionEntry> repeatedKinds = graphOf({});
  EventRecord repeated = step({"s", 10, 0, 0, {}, 3, {"A"}, 1});
  repeated.children.push_back(eventRecord("exec bg", 6, 1, 5002, itemsOf({"B"}, 5005)));
  repeated.children.push_back(eventRecord("resources", 2, 1, 5004));
  repeated.children.push_back(eventRecord("other", 99, 1, 17, itemsOf({"C"}, 5005)));
  repeatedKinds.getOrCreate("g").events.front().children = {repeated};

  GraphMap<ExecutionEntry> otherChildren = graphOf({});
  otherChildren.getOrCreate("g").events.front().children = {eventRecord("not a step", 50, 1, 403),
                                                            step({.name = "s", .value = 10})};

  struct Case {
    const char* what;
    GraphMap<ExecutionEntry> graphs;
    std::vector<std::string> spans;
  };
  const Case cases[] = {
      {"the cursor advances by foreground spans only",
       graphOf({step({.name = "one", .value = 10, .wait = 5, .waitBackground = 50}),
                step({.name = "two", .value = 7, .executionBackground = 70})}),
       {"F [Wait] 0+5 grey", "B [] 0+50", "F [one] 5+10", "B [] 5+0", "F [two] 15+7",
        "B [] 15+70"}},
      {"zero wait and zero value write nothing", graphOf({step({.name = "idle"})}), {}},
      {"last value of a kind counts, names of every record are kept",
       repeatedKinds,
       {"F [s] 0+10 {PXB}", "B [A, B] 0+6"}},
      {"children of other types are ignored", otherChildren, {"F [s] 0+10", "B [] 0+0"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    testing::CapturingLogger logger;
    const std::optional<std::vector<TraceEvent>> events = buildTraceEvents(c.graphs);
    ASSERT_TRUE(events.has_value());
    EXPECT_EQ(describe(*events), c.spans);
    EXPECT_TRUE(logger.texts(logError).empty());
  }
}

TEST(TraceEvents, StepMissingASubEventKindIsIncompatible) {
  const char* const incompatible = "Log file contains incompatible data! Please provide log file "
                                   "generated using the linting profile!";
  for (uint32_t missing : {5001u, 5002u, 5003u, 5004u}) {
    SCOPED_TRACE(missing);
    EventRecord broken = step({.name = "broken", .value = 10, .wait = 5});
    std::erase_if(broken.children,
                  [missing](const EventRecord& child) { return child.eventType == missing; });
    testing::CapturingLogger logger;
    // Earlier complete steps do not save the document.
    EXPECT_FALSE(
        buildTraceEvents(graphOf({step({.name = "fine", .value = 3}), broken})).has_value());
    EXPECT_EQ(logger.texts(logError), std::vector<std::string>{incompatible});
    EXPECT_FALSE(traceJson(graphOf({broken})).has_value());
  }
}

TEST(TraceDocument, LargeNumbersAndEscapedNames) {
  const uint64_t huge = ~uint64_t(0);
  const std::optional<std::string> json = traceJson(
      graphOf({step({.name = "say \"hi\"\n", .value = huge, .executionBackground = huge})}));
  ASSERT_TRUE(json.has_value());
  EXPECT_NE(json->find(R"("name": "say \"hi\"\n",)"), std::string::npos);
  EXPECT_NE(json->find(R"("dur": 18446744073709551615,)"), std::string::npos);
  EXPECT_NE(json->find(R"("Duration": 18446744073709551615)"), std::string::npos);
}

} // namespace
} // namespace kvt::profiling
