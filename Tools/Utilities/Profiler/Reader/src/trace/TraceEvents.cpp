// Execution steps into trace spans.
#include "TraceEvents.h"

#include "log/LogCodes.h"
#include "plugin/Logging.h"
#include "trace/ResourceReport.h"

namespace kvt::profiling {

namespace {

// What one execution step's sub-events give; the last record of a kind sets its value, while
// the item names of every record of that kind are kept.
struct StepDetails {
  std::optional<uint64_t> wait;
  std::optional<uint64_t> executionBackground;
  std::optional<uint64_t> waitBackground;
  std::optional<uint64_t> resourceMask;
  std::vector<std::string> executionItems;
  std::vector<std::string> waitItems;

  bool complete() const { return wait && executionBackground && waitBackground && resourceMask; }
};

void collectItemNames(const EventRecord& record, uint32_t itemType,
                      std::vector<std::string>& names) {
  for (const EventRecord& item : record.children)
    if (item.eventType == itemType)
      names.push_back(item.identifier);
}

StepDetails readStepDetails(const EventRecord& step) {
  StepDetails details;
  for (const EventRecord& child : step.children) {
    const uint64_t value = child.value.payload;
    switch (child.eventType) {
    case stepWait:
      details.wait = value;
      break;
    case executionBackground:
      details.executionBackground = value;
      collectItemNames(child, executionBackgroundItem, details.executionItems);
      break;
    case waitBackground:
      details.waitBackground = value;
      collectItemNames(child, waitBackgroundItem, details.waitItems);
      break;
    case resourceMask:
      details.resourceMask = value;
      break;
    default:
      break;
    }
  }
  return details;
}

} // namespace

std::string joinNames(const std::vector<std::string>& names) {
  std::string joined;
  for (size_t i = 0; i < names.size(); ++i) {
    if (i != 0)
      joined += ", ";
    joined += names[i];
  }
  return joined;
}

std::optional<std::vector<TraceEvent>>
buildTraceEvents(const GraphMap<ExecutionEntry>& averageExecutionByGraph) {
  std::vector<TraceEvent> events;
  uint64_t cursor = 0;
  for (const auto& [graph, average] : averageExecutionByGraph) {
    for (const EventRecord& record : average.events) {
      for (const EventRecord& step : record.children) {
        if (step.eventType != executionStep)
          continue;
        const StepDetails details = readStepDetails(step);
        if (!details.complete()) {
          logMessage(logError, "Log file contains incompatible data! Please provide log file "
                               "generated using the linting profile!");
          return std::nullopt;
        }
        if (*details.wait != 0) {
          events.push_back({"Wait", cursor, *details.wait, true, "", "grey"});
          events.push_back(
              {joinNames(details.waitItems), cursor, *details.waitBackground, false, "", ""});
          cursor += *details.wait;
        }
        const uint64_t executionSpan = step.value.payload;
        if (executionSpan != 0) {
          events.push_back({step.identifier, cursor, executionSpan, true,
                            resourceText(uint8_t(*details.resourceMask)), ""});
          events.push_back({joinNames(details.executionItems), cursor, *details.executionBackground,
                            false, "", ""});
          cursor += executionSpan;
        }
      }
    }
  }
  return events;
}

} // namespace kvt::profiling
