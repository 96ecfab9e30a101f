// A run's statistics reduced to one number per series as soon as it is read, so that a history
// keeps runs x series numbers and never an execution's value.
#include "RunSeriesFigures.h"

#include "statistics/SeriesSummary.h"

#include <numeric>

namespace kvt::profiling {

namespace {

std::optional<double> figureOf(const Series& series, HistoryFigure figure) {
  const std::vector<uint64_t>& values = series.values;
  if (values.empty())
    return std::nullopt;
  switch (figure) {
  case HistoryFigure::p50:
    return double(nearestRank(values, 50));
  case HistoryFigure::p90:
    return double(nearestRank(values, 90));
  case HistoryFigure::mean:
    return std::accumulate(values.begin(), values.end(), 0.0) / double(values.size());
  }
  return std::nullopt;
}

} // namespace

std::string_view historyFigureName(HistoryFigure figure) {
  switch (figure) {
  case HistoryFigure::p50:
    return "p50";
  case HistoryFigure::p90:
    return "p90";
  case HistoryFigure::mean:
    return "mean";
  }
  return {};
}

std::optional<HistoryFigure> findHistoryFigure(std::string_view name) {
  for (const HistoryFigure figure : {HistoryFigure::p50, HistoryFigure::p90, HistoryFigure::mean})
    if (historyFigureName(figure) == name)
      return figure;
  return std::nullopt;
}

RunSeriesFigures figuresOfRun(const RunStatistics& run, HistoryFigure figure, std::string source) {
  RunSeriesFigures figures{std::move(source), run.createdUs, 0, {}};
  for (const GraphStatistics& graph : run.graphs) {
    figures.executions += graph.executions - graph.skipped;
    for (const SeriesRef& series : listSeries(graph)) {
      HistorySeriesKey key{graph.name, series.kind, std::string(series.name), std::nullopt,
                           series.occurrence};
      if (series.parent)
        key.parent = std::string(*series.parent);
      figures.series.push_back({std::move(key), figureOf(*series.series, figure)});
    }
  }
  return figures;
}

} // namespace kvt::profiling
