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
EventRecord step(const StepSpec& spec) {
  return eventRecord(
      spec.name, spec.value, 1, 404,
      {eventRecord("wait", spec.wait, 1, 5001),
       eventRecord("exec bg", spec.executionBackground, 1, 5002,
                   itemsOf(spec.executionItems, 5005)),
       eventRecord("wait bg", spec.waitBackground, 1, 5003, itemsOf(spec.waitItems, 5006)),
       eventRecord("resources", spec.mask, 1, 5004)});
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

TEST(JoinNames, Joins) {
  struct Case {
    const char* what;
    std::vector<std::string> names;
    const char* joined;
  };
  const Case cases[] = {
      {"none", {}, ""},
      {"one", {"Load"}, "Load"},
      {"two", {"Load", "Store"}, "Load, Store"},
      {"empty names keep their separators", {"", "", "x"}, ", , x"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(joinNames(c.names), c.joined);
  }
}

TEST(TraceEvents, Spans) {
  StepSpec full{"Conv_1", 2500, 120, 30, {"Copy"}, 800, {"A", "B"}, 5};

  GraphMap<ExecutionEntry> twoGraphs = graphOf({step({.name = "first", .value = 10})});
  twoGraphs.getOrCreate("h").events = {
      eventRecord("execute", 0, 1, 0, {step({.name = "second", .value = 4})})};

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
      {"no graphs", {}, {}},
      {"top-level record without steps", graphOf({}), {}},
      {"wait and execution",
       graphOf({step(full)}),
       {"F [Wait] 0+120 grey", "B [Copy] 0+30", "F [Conv_1] 120+2500 {PXA, DMA}",
        "B [A, B] 120+800"}},
      {"the cursor advances by foreground spans only",
       graphOf({step({.name = "one", .value = 10, .wait = 5, .waitBackground = 50}),
                step({.name = "two", .value = 7, .executionBackground = 70})}),
       {"F [Wait] 0+5 grey", "B [] 0+50", "F [one] 5+10", "B [] 5+0", "F [two] 15+7",
        "B [] 15+70"}},
      {"zero wait and zero value write nothing", graphOf({step({.name = "idle"})}), {}},
      {"a zero value still writes its wait",
       graphOf({step({.name = "waiting", .wait = 8, .waitBackground = 2, .waitItems = {"Fetch"}})}),
       {"F [Wait] 0+8 grey", "B [Fetch] 0+2"}},
      {"the cursor runs on across graphs",
       twoGraphs,
       {"F [first] 0+10", "B [] 0+0", "F [second] 10+4", "B [] 10+0"}},
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

TEST(TraceDocument, EmptyTrace) {
  EXPECT_EQ(traceJson({}), "{\n    \"traceEvents\": []\n}");
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
