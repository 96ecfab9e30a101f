// One execution at a time: its duration, its queue wait, each top-level record's value and each
// step's span and wait go to their series; the execution itself is not kept.
#include "StatisticsCollector.h"

#include "StepWait.h"
#include "log/LogCodes.h"
#include "model/EventBuilder.h"

#include <algorithm>

namespace kvt::profiling {

namespace {

// Where one execution's values go: a skipped execution gives only first values, unless its
// values are kept for the execution order.
struct ExecutionPlace {
  bool counted = false;
  bool first = false;
  bool keepSkipped = false;

  void record(Series& series, uint64_t value) const {
    if (first)
      series.first = value;
    if (counted || keepSkipped)
      series.values.push_back(value);
    if (!counted && keepSkipped)
      ++series.skippedValues;
  }
};

uint64_t readValue(const schema::Event& event) {
  return readTaggedValue(event).payload;
}

void recordBackend(GraphStatistics& graph, OccurrenceIndex& index, const schema::Event& record,
                   const ExecutionPlace& place) {
  const std::string_view name = readIdentifier(record);
  const OccurrenceIndex::Slot slot = index.next({}, name);
  if (slot.series == OccurrenceIndex::noSeries) {
    slot.series = graph.backend.size();
    graph.backend.push_back(BackendSeries{std::string(name), slot.occurrence, {}});
  }
  place.record(graph.backend[slot.series].value, readValue(record));
}

void recordSteps(GraphStatistics& graph, OccurrenceIndex& index, const schema::Event& record,
                 const ExecutionPlace& place) {
  const EventVector* children = record.child_events();
  if (!children)
    return;
  const std::string_view parent = readIdentifier(record);
  for (const schema::Event* child : *children) {
    if (child->event_type() != executionStep)
      continue;
    const std::string_view name = readIdentifier(*child);
    const OccurrenceIndex::Slot slot = index.next(parent, name);
    if (slot.series == OccurrenceIndex::noSeries) {
      slot.series = graph.steps.size();
      graph.steps.push_back(
          StepSeries{std::string(name), std::string(parent), slot.occurrence, {}, {}});
    }
    StepSeries& step = graph.steps[slot.series];
    place.record(step.span, readValue(*child));
    if (const std::optional<uint64_t> wait = findLastWait(*child))
      place.record(step.wait, *wait);
  }
}

// Drops the skipped executions' values, kept only for the sink, and sorts the others.
void sortValues(Series& series) {
  series.values.erase(series.values.begin(),
                      series.values.begin() + std::ptrdiff_t(series.skippedValues));
  series.skippedValues = 0;
  std::sort(series.values.begin(), series.values.end());
}

} // namespace

void StatisticsCollector::add(const DispatchedExecution& execution) {
  if (onlyGraph && execution.graph != *onlyGraph)
    return;
  GraphState& state = graphs.getOrCreate(execution.graph);
  GraphStatistics& graph = state.statistics;
  if (graph.executions == 0)
    graph.name = execution.graph;
  const ExecutionPlace place{graph.executions >= skipFirst, graph.executions == 0,
                             bool(orderedSeries)};
  ++graph.executions;
  if (!place.counted)
    ++graph.skipped;
  place.record(graph.duration, execution.duration);
  if (const std::optional<uint64_t> queueWait = findSingleQueueWait(execution.events))
    place.record(graph.queueWait, *queueWait);
  else if (place.counted)
    graph.queueWaitInEveryExecution = false;

  state.backendIndex.startExecution();
  state.stepIndex.startExecution();
  for (const schema::Event* record : execution.events) {
    recordBackend(graph, state.backendIndex, *record, place);
    recordSteps(graph, state.stepIndex, *record, place);
  }
}

RunStatistics StatisticsCollector::take() && {
  RunStatistics run;
  for (auto& [name, state] : graphs) {
    GraphStatistics& graph = state.statistics;
    if (orderedSeries)
      for (const SeriesRef& ref : listSeries(graph))
        orderedSeries(graph, ref, ref.series->values, ref.series->skippedValues);
    forEachSeries(graph, sortValues);
    run.graphs.push_back(std::move(graph));
  }
  return run;
}

} // namespace kvt::profiling
