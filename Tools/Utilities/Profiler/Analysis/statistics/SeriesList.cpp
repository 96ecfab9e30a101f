// The flat list of a graph's series.
#include "SeriesList.h"

namespace kvt::profiling {

std::vector<SeriesRef> listSeries(const GraphStatistics& graph) {
  std::vector<SeriesRef> list;
  list.push_back({SeriesKind::duration, "duration", {}, {}, &graph.duration});
  if (hasQueueWaitSeries(graph))
    list.push_back({SeriesKind::queueWait, "queueWait", {}, {}, &graph.queueWait});
  for (const BackendSeries& record : graph.backend)
    list.push_back({SeriesKind::backend, record.name, {}, record.occurrence, &record.value});
  for (const StepSeries& step : graph.steps) {
    list.push_back({SeriesKind::span, step.name, step.parent, step.occurrence, &step.span});
    if (hasValues(step.wait))
      list.push_back({SeriesKind::wait, step.name, step.parent, step.occurrence, &step.wait});
  }
  return list;
}

SeriesKey makeSeriesKey(std::string_view graph, const SeriesRef& series) {
  SeriesKey key{std::string(graph), series.kind, std::string(series.name), {}, series.occurrence};
  if (series.parent)
    key.parent.emplace(*series.parent);
  return key;
}

} // namespace kvt::profiling
