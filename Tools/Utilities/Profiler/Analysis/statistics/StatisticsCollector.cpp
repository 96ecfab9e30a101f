// One execution at a time: the walk names the series of each of its values, which go to their
// series as they come; the execution itself is not kept.
#include "StatisticsCollector.h"

#include <algorithm>
#include <unordered_map>

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
  const WalkedExecution walked = walk.walk(execution);
  const ExecutionPlace place{walked.execution >= skipFirst, walked.execution == 0,
                             bool(orderedSeries)};
  if (walked.graph == executionsByGraph.size())
    executionsByGraph.push_back(0);
  ++executionsByGraph[walked.graph];
  // Series first met in this execution belong to its graph.
  series.resize(walk.keys().size());
  graphBySeries.resize(walk.keys().size(), walked.graph);
  for (const SeriesValue& value : walked.values)
    place.record(series[value.series], value.value);
}

RunStatistics StatisticsCollector::take() && {
  RunStatistics run;
  for (size_t graph = 0; graph < walk.graphs().size(); ++graph) {
    GraphStatistics& statistics = run.graphs.emplace_back();
    statistics.name = walk.graphs()[graph];
    statistics.executions = executionsByGraph[graph];
    statistics.skipped = std::min(statistics.executions, skipFirst);
  }
  std::unordered_map<SeriesKey, size_t, SeriesKeyHash> stepBySpan;
  for (size_t index = 0; index < series.size(); ++index) {
    const SeriesKey& key = walk.keys()[index];
    GraphStatistics& graph = run.graphs[graphBySeries[index]];
    Series& values = series[index];
    switch (key.kind) {
    case SeriesKind::duration:
      graph.duration = std::move(values);
      break;
    case SeriesKind::queueWait:
      graph.queueWait = std::move(values);
      break;
    case SeriesKind::backend:
      graph.backend.push_back({key.name, *key.occurrence, std::move(values)});
      break;
    case SeriesKind::span:
      stepBySpan.emplace(key, graph.steps.size());
      graph.steps.push_back({key.name, *key.parent, *key.occurrence, std::move(values), {}});
      break;
    case SeriesKind::wait: {
      SeriesKey span = key;
      span.kind = SeriesKind::span;
      graph.steps[stepBySpan.at(span)].wait = std::move(values);
      break;
    }
    }
  }
  for (GraphStatistics& graph : run.graphs) {
    if (orderedSeries)
      for (const SeriesRef& ref : listSeries(graph))
        orderedSeries(graph, ref, ref.series->values, ref.series->skippedValues);
    forEachSeries(graph, sortValues);
  }
  return run;
}

} // namespace kvt::profiling
