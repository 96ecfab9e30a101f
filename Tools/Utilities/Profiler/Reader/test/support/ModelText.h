// A one-line rendering of an event model for tests: every part that differs from a fresh model,
// in member order, joined by "; ". Events show as their identifiers, children in braces.
// Example: "composeGraphsTiming 7000/812; execution g 9000/10 [a{b}]" (timestamp/duration).
#pragma once

#include "model/EventModel.h"
#include "support/CollectedExecutions.h"

#include <sstream>
#include <string>

namespace kvt::profiling::testing {

// "a b{c d}": identifiers in order, children in braces.
inline std::string eventNames(const EventList& events) {
  std::string text;
  for (const EventRecord& record : events) {
    if (&record != &events.front())
      text += ' ';
    text += record.identifier;
    if (!record.children.empty())
      text += '{' + eventNames(record.children) + '}';
  }
  return text;
}

inline std::string eventsText(const EventList& events) {
  return '[' + eventNames(events) + ']';
}

// The executions, which the model itself does not keep, show where the model's own would be.
inline std::string modelText(const EventModel& model, const ExecutionsByGraph& executions = {}) {
  std::ostringstream out;
  const char* separator = "";
  auto part = [&](const std::string& name) -> std::ostringstream& {
    out << separator << name;
    separator = "; ";
    return out;
  };
  auto timing = [&](const char* name, const TimingPair& pair) {
    if (pair.timestamp || pair.duration)
      part(name) << ' ' << pair.timestamp << '/' << pair.duration;
  };
  auto flag = [&](const char* name, bool value) {
    if (value)
      part(name);
  };
  auto entry = [&](const std::string& name, const ExecutionEntry& e) {
    part(name) << ' ' << e.timestamp << '/' << e.duration << ' ' << eventsText(e.events);
  };
  auto slot = [&](const char* name, const RunLevelSlot& s) {
    if (s.present || s.timestamp || s.duration || !s.events.empty())
      part(name) << ' ' << s.timestamp << '/' << s.duration << ' ' << eventsText(s.events)
                 << (s.present ? " present" : "");
  };

  timing("initTiming", model.initTiming);
  timing("unnamedTiming", model.unnamedTiming);
  timing("composeGraphsTiming", model.composeGraphsTiming);
  if (model.hasInitEvents || !model.initEvents.empty())
    part("initEvents") << ' ' << eventsText(model.initEvents);
  flag("hasInitEvents", model.hasInitEvents);
  slot("initSlot", model.initSlot);
  for (const auto& [graph, finalize] : model.finalizeByGraph)
    entry("finalize " + graph, finalize);
  flag("hasFinalize", model.hasFinalize);
  flag("hasFinalizeEvents", model.hasFinalizeEvents);
  for (const auto& [graph, graphExecutions] : executions)
    for (const ExecutionEntry& execution : graphExecutions)
      entry("execution " + graph, execution);
  flag("queueWaitMode", model.queueWaitMode);
  for (const auto& [graph, average] : model.averageExecutionByGraph)
    entry("average " + graph, average);
  for (const auto& [graph, queueWaits] : model.queueWaitByGraph) {
    std::ostringstream& line = part("queueWait " + graph);
    for (uint64_t queueWait : queueWaits)
      line << ' ' << queueWait;
  }
  slot("executeOverallSlot", model.executeOverallSlot);
  flag("hasCombinedExecute", model.hasCombinedExecute);
  slot("deinitSlot", model.deinitSlot);
  slot("libLoadSlot", model.libLoadSlot);
  return out.str();
}

} // namespace kvt::profiling::testing
