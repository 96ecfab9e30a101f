// Method dispatch: each method type has its handler, which filters the message by level and files
// its timing and events in the model.
#include "MethodDispatch.h"

#include "EventBuilder.h"
#include "plugin/Logging.h"

#include <optional>
#include <string_view>
#include <vector>

namespace kvt::profiling {

namespace {

// What a graph message is: it decides where its events and timing are filed.
enum class GraphStep {
  execute,  // types 1 and 3: every event but init ones goes to the execution
  finalize, // type 2: every event but init ones goes to the finalize entry
  combined, // type 9: finalize events to the finalize entry, the others to the execution
};

bool isVisible(const schema::Message& message, VisibilityLevel visibilityLevel) {
  return message.visibility() < static_cast<int8_t>(visibilityLevel);
}

// Whether the field is stored; a stored 0 is a value, an absent field is not. Generated tables
// inherit the field lookup privately, hence the cast to their base.
bool hasField(const schema::Timing& timing, flatbuffers::voffset_t field) {
  return reinterpret_cast<const flatbuffers::Table&>(timing).CheckField(field);
}

// End minus start, 0 when end is not later or either is missing; none without a timing table.
std::optional<uint64_t> readDuration(const schema::Message& message) {
  const schema::Timing* timing = message.timing();
  if (!timing)
    return std::nullopt;
  if (!hasField(*timing, schema::Timing::VT_START) || !hasField(*timing, schema::Timing::VT_END))
    return 0;
  return timing->end() > timing->start() ? timing->end() - timing->start() : 0;
}

uint64_t readTimestamp(const schema::Message& message) {
  const schema::MessageStamp* stamp = message.stamp();
  return stamp ? stamp->timestamp() : 0;
}

// Types 6 and 7. The timestamp is stored before the level filter, so that a dropped message
// still dates its row.
bool handleTimingOnly(TimingPair& pair, const schema::Message& message,
                      VisibilityLevel visibilityLevel) {
  pair.timestamp = readTimestamp(message);
  if (!isVisible(message, visibilityLevel))
    return false;
  if (const std::optional<uint64_t> duration = readDuration(message))
    pair.duration = *duration;
  return true;
}

// Types 4, 5, 8 and 10: the latest message replaces the slot's contents.
bool handleRunLevel(RunLevelSlot& slot, bool marksPresence, const schema::Message& message,
                    VisibilityLevel visibilityLevel) {
  if (!isVisible(message, visibilityLevel))
    return false;
  if (const std::optional<uint64_t> duration = readDuration(message))
    slot.duration = *duration;
  slot.timestamp = readTimestamp(message);
  slot.events = buildEventList(message);
  if (marksPresence)
    slot.present = true;
  return true;
}

// A graph message's top-level events by the step they belong to, in log order.
struct RoutedEvents {
  std::vector<const schema::Event*> init;
  std::vector<const schema::Event*> finalize;
  std::vector<const schema::Event*> execution;
};

RoutedEvents routeEvents(GraphStep step, const schema::Message& message) {
  RoutedEvents routed;
  const EventVector* events = message.events();
  if (!events)
    return routed;
  for (const schema::Event* event : *events) {
    const uint32_t eventType = event->event_type();
    if (eventType == initEvent)
      routed.init.push_back(event);
    else if (step == GraphStep::finalize ||
             (step == GraphStep::combined && eventType == finalizeEvent))
      routed.finalize.push_back(event);
    else
      routed.execution.push_back(event);
  }
  return routed;
}

// Types 1, 2, 3 and 9. Init events of any graph message replace the init list, even with none of
// their own once some message had them; finalize entries are kept only once finalize events were
// seen.
bool handleGraph(EventModel& model, const ExecutionConsumers& consumers, GraphStep step,
                 const schema::Message& message, VisibilityLevel visibilityLevel) {
  if (!isVisible(message, visibilityLevel))
    return false;
  const flatbuffers::String* graphName = message.graph_name();
  if (!graphName)
    return false;
  if (step == GraphStep::finalize)
    model.hasFinalize = true;
  const uint64_t duration = readDuration(message).value_or(0);
  const uint64_t timestamp = readTimestamp(message);

  const RoutedEvents routed = routeEvents(step, message);
  if (!routed.init.empty())
    model.hasInitEvents = true;
  if (!routed.finalize.empty())
    model.hasFinalizeEvents = true;
  if (model.hasInitEvents)
    model.initEvents = buildEventRecords(routed.init);
  const std::string_view graph(graphName->data(), graphName->size());
  if (step != GraphStep::execute && model.hasFinalizeEvents)
    model.finalizeByGraph.getOrCreate(graph) =
        FinalizeEntry{duration, timestamp, buildEventRecords(routed.finalize)};
  if (step != GraphStep::finalize) {
    const DispatchedExecution execution{graph, duration, timestamp, routed.execution};
    for (const ExecutionConsumer& consume : consumers)
      consume(execution);
  }
  if (step == GraphStep::combined)
    model.hasCombinedExecute = true;
  return true;
}

} // namespace

bool dispatchMessage(EventModel& model, const ExecutionConsumers& consumers,
                     VisibilityLevel visibilityLevel, const schema::Message& message) {
  switch (static_cast<MethodType>(message.method_type())) {
  case MethodType::execute:
    return handleGraph(model, consumers, GraphStep::execute, message, visibilityLevel);
  case MethodType::finalize:
    return handleGraph(model, consumers, GraphStep::finalize, message, visibilityLevel);
  case MethodType::executeWithQueueWait:
    model.queueWaitMode = true; // even when the handler then drops the message
    return handleGraph(model, consumers, GraphStep::execute, message, visibilityLevel);
  case MethodType::init:
    return handleRunLevel(model.initSlot, /*marksPresence=*/true, message, visibilityLevel);
  case MethodType::deinit:
    return handleRunLevel(model.deinitSlot, /*marksPresence=*/false, message, visibilityLevel);
  case MethodType::unnamedTiming:
    return handleTimingOnly(model.unnamedTiming, message, visibilityLevel);
  case MethodType::composeGraphs:
    return handleTimingOnly(model.composeGraphsTiming, message, visibilityLevel);
  case MethodType::executeOverall:
    return handleRunLevel(model.executeOverallSlot, /*marksPresence=*/true, message,
                          visibilityLevel);
  case MethodType::executeCombined:
    return handleGraph(model, consumers, GraphStep::combined, message, visibilityLevel);
  case MethodType::libLoad:
    return handleRunLevel(model.libLoadSlot, /*marksPresence=*/true, message, visibilityLevel);
  }
  logMessage(logError, "Unknown method type.");
  return false;
}

} // namespace kvt::profiling
