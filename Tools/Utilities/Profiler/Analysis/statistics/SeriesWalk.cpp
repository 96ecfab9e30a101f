// The walk looks each record's series up through the occurrence index and hands out indexes, so
// a value costs a comparison of names in the common case and no allocation.
#include "SeriesWalk.h"

#include "StepWait.h"
#include "log/LogCodes.h"
#include "model/EventBuilder.h"

namespace kvt::profiling {

size_t SeriesWalk::findGraphSeries(std::optional<size_t>& series, const std::string& graph,
                                   SeriesKind kind) {
  if (!series) {
    series = seriesKeys.size();
    seriesKeys.push_back({graph, kind, std::string(seriesKindName(kind)), {}, {}});
  }
  return *series;
}

size_t SeriesWalk::findSeries(GraphState& graph, const SeriesKey& record) {
  const OccurrenceIndex::Slot slot = graph.records.next(record);
  if (slot.series == OccurrenceIndex::noSeries) {
    slot.series = seriesKeys.size();
    seriesKeys.push_back(record);
    seriesKeys.back().occurrence = slot.occurrence;
  }
  return slot.series;
}

size_t SeriesWalk::findWaitSeries(size_t span) {
  if (waitBySpan.size() <= span)
    waitBySpan.resize(span + 1);
  if (!waitBySpan[span]) {
    SeriesKey wait = seriesKeys[span];
    wait.kind = SeriesKind::wait;
    waitBySpan[span] = seriesKeys.size();
    seriesKeys.push_back(std::move(wait));
  }
  return *waitBySpan[span];
}

void SeriesWalk::walkRecord(GraphState& graph, const schema::Event& record, bool queueWait) {
  const std::string_view parent = readIdentifier(record);
  if (!queueWait) {
    graph.backend.name.assign(parent);
    values.push_back({findSeries(graph, graph.backend), readTaggedValue(record).payload});
  }
  const EventVector* children = record.child_events();
  if (!children)
    return;
  graph.step.parent->assign(parent);
  for (const schema::Event* child : *children) {
    if (child->event_type() != executionStep)
      continue;
    graph.step.name.assign(readIdentifier(*child));
    const size_t span = findSeries(graph, graph.step);
    values.push_back({span, readTaggedValue(*child).payload});
    if (const std::optional<uint64_t> wait = findLastWait(*child))
      values.push_back({findWaitSeries(span), *wait});
  }
}

WalkedExecution SeriesWalk::walk(const DispatchedExecution& execution, uint64_t valuesFrom) {
  const size_t known = graphStates.size();
  GraphState& graph = graphStates.getOrCreate(execution.graph);
  if (graphStates.size() > known) {
    graph.index = known;
    graphNames.emplace_back(execution.graph);
    graph.backend = {graphNames.back(), SeriesKind::backend, {}, {}, {}};
    graph.step = {graphNames.back(), SeriesKind::span, {}, std::string(), {}};
  }
  values.clear();
  const WalkedExecution walked{graph.index, graph.executions++, {}};
  if (walked.execution < valuesFrom)
    return walked;
  const std::string& name = graphNames[graph.index];
  values.push_back(
      {findGraphSeries(graph.duration, name, SeriesKind::duration), execution.duration});
  const schema::Event* queueWait = findSingleQueueWaitEvent(execution.events);
  if (queueWait)
    values.push_back({findGraphSeries(graph.queueWait, name, SeriesKind::queueWait),
                      readTaggedValue(*queueWait).payload});
  graph.records.startExecution();
  for (const schema::Event* record : execution.events)
    walkRecord(graph, *record, record == queueWait);
  return {walked.graph, walked.execution, values};
}

} // namespace kvt::profiling
