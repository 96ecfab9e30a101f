// The walk of the statistics collector, each value a row instead of a series entry; the keys are
// looked up through the same occurrence index, so a row names the series the statistics file
// its value in.
#include "ExecutionRows.h"

#include "log/LogCodes.h"
#include "log/ParseDriver.h"
#include "model/EventBuilder.h"
#include "model/MethodDispatch.h"
#include "statistics/StepWait.h"

namespace kvt::profiling {

size_t ExecutionRowSplitter::findSeries(const GraphState& graph, OccurrenceIndex& index,
                                        SeriesKind kind, std::string_view parent,
                                        std::string_view name) {
  const OccurrenceIndex::Slot slot = index.next(parent, name);
  if (slot.series == OccurrenceIndex::noSeries) {
    slot.series = known.series.size();
    known.series.push_back(
        {graph.index, kind, std::string(name),
         kind == SeriesKind::backend ? std::nullopt : std::optional<std::string>(parent),
         slot.occurrence});
  }
  return slot.series;
}

size_t ExecutionRowSplitter::findGraphSeries(std::optional<size_t>& series, uint32_t graph,
                                             SeriesKind kind) {
  if (!series) {
    series = known.series.size();
    known.series.push_back({graph, kind, std::string(seriesKindName(kind)), {}, {}});
  }
  return *series;
}

size_t ExecutionRowSplitter::findWaitSeries(size_t span) {
  if (waitBySpan.size() <= span)
    waitBySpan.resize(span + 1);
  if (!waitBySpan[span]) {
    ExecutionSeriesKey wait = known.series[span];
    wait.kind = SeriesKind::wait;
    waitBySpan[span] = known.series.size();
    known.series.push_back(std::move(wait));
  }
  return *waitBySpan[span];
}

void ExecutionRowSplitter::splitRecord(GraphState& graph, const schema::Event& record) {
  const std::string_view parent = readIdentifier(record);
  values.push_back({findSeries(graph, graph.backendIndex, SeriesKind::backend, {}, parent),
                    readTaggedValue(record).payload});
  const EventVector* children = record.child_events();
  if (!children)
    return;
  for (const schema::Event* child : *children) {
    if (child->event_type() != executionStep)
      continue;
    const std::string_view name = readIdentifier(*child);
    const size_t span = findSeries(graph, graph.stepIndex, SeriesKind::span, parent, name);
    values.push_back({span, readTaggedValue(*child).payload});
    if (const std::optional<uint64_t> wait = findLastWait(*child))
      values.push_back({findWaitSeries(span), *wait});
  }
}

std::optional<ExecutionRows> ExecutionRowSplitter::split(const DispatchedExecution& execution) {
  const uint32_t count = uint32_t(graphs.size());
  GraphState& graph = graphs.getOrCreate(execution.graph);
  if (graphs.size() > count) {
    graph.index = count;
    known.graphs.emplace_back(execution.graph);
  }
  const uint64_t index = graph.executions++;
  if (index < skipFirst)
    return std::nullopt;
  values.clear();
  values.push_back({findGraphSeries(graph.durationSeries, graph.index, SeriesKind::duration),
                    execution.duration});
  if (const std::optional<uint64_t> queueWait = findSingleQueueWait(execution.events))
    values.push_back(
        {findGraphSeries(graph.queueWaitSeries, graph.index, SeriesKind::queueWait), *queueWait});
  graph.backendIndex.startExecution();
  graph.stepIndex.startExecution();
  for (const schema::Event* record : execution.events)
    splitRecord(graph, *record);
  return ExecutionRows{graph.index, index, values};
}

LogReadResult readExecutionRows(const std::string& path, const ExecutionRowOptions& options,
                                const ExecutionRowSink& sink) {
  ExecutionRowSplitter splitter(options.skipFirst);
  const ExecutionConsumers consumers{[&](const DispatchedExecution& execution) {
    if (const std::optional<ExecutionRows> rows = splitter.split(execution))
      sink(*rows, splitter.keys());
  }};
  EventModel model;
  FlatBufferReaderUtil streamReader;
  return readLogChunks(path, streamReader,
                       [&] {
                         while (const schema::Message* message = streamReader.nextMessage())
                           dispatchMessage(model, consumers, options.visibilityLevel, *message);
                       },
                       {.wholeChunksOnly = true});
}

} // namespace kvt::profiling
