// The execution points are thinned while the pass hands each series out in execution order,
// so the page never holds more than a bounded number of them, whatever the log's size.
#include "RunFigures.h"

#include "statistics/StepShares.h"

#include <algorithm>
#include <unordered_map>

namespace kvt::profiling {

namespace {

struct OrderedPoints {
  ExecutionPoints points;
  uint64_t values = 0;
  uint64_t skippedValues = 0;
};

using OrderedPointsByKey = std::unordered_map<SeriesKey, OrderedPoints, SeriesKeyHash>;

GraphFigures figureGraph(const GraphStatistics& graph, OrderedPointsByKey& order) {
  GraphFigures figures{graph.name, graph.executions, graph.skipped, 0, {}};
  const std::vector<std::optional<double>> shares = computeStepShares(graph);
  size_t step = 0;
  for (const SeriesRef& ref : listSeries(graph)) {
    if (ref.kind == SeriesKind::backend)
      continue; // the page draws no back-end record, so their figures would be dead weight
    PageSeries series = figurePageSeries(ref);
    if (ref.kind == SeriesKind::span) {
      series.share = shares[step++];
      figures.stepMeanSum += series.summary.mean;
    }
    if (const auto found = order.find(makeSeriesKey(graph.name, ref)); found != order.end()) {
      series.points = std::move(found->second.points);
      series.values = found->second.values;
      series.skippedValues = found->second.skippedValues;
    }
    figures.series.push_back(std::move(series));
  }
  return figures;
}

} // namespace

void boundPoints(RunFigures& figures) {
  size_t seriesCount = 0;
  size_t pointCount = 0;
  for (const GraphFigures& graph : figures.graphs)
    for (const PageSeries& series : graph.series) {
      ++seriesCount;
      pointCount += series.points.index.size();
    }
  if (pointCount <= maxPointsPerRun)
    return;
  const size_t perSeries = std::max(minPointsPerSeries, maxPointsPerRun / seriesCount / 2 * 2);
  for (GraphFigures& graph : figures.graphs)
    for (PageSeries& series : graph.series)
      series.points = thinExecutionPoints(series.points, perSeries);
}

LogReadResult readRunFigures(const std::string& path, StatisticsOptions options, RunStatistics& run,
                             RunFigures& figures) {
  OrderedPointsByKey order;
  options.orderedSeries = [&order](const GraphStatistics& graph, const SeriesRef& ref,
                                   std::span<const uint64_t> ordered, uint64_t skippedValues) {
    order[makeSeriesKey(graph.name, ref)] = {thinExecutionPoints(ordered, maxPointsPerSeries),
                                             ordered.size(), skippedValues};
  };
  const LogReadResult read = readRunStatistics(path, options, run);
  if (!read.stands(options.partial))
    return read;
  figures = RunFigures{path, {}, run.partial};
  for (const GraphStatistics& graph : run.graphs)
    figures.graphs.push_back(figureGraph(graph, order));
  boundPoints(figures);
  return read;
}

} // namespace kvt::profiling
