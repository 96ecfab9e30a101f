// The shares come by step, the series by kind: each span row takes the next step's share.
#include "SeriesFigureRows.h"

#include "statistics/StepShares.h"

namespace kvt::profiling {

std::vector<SeriesFigureRow> listSeriesFigureRows(const RunStatistics& run) {
  std::vector<SeriesFigureRow> rows;
  for (const GraphStatistics& graph : run.graphs) {
    const std::vector<std::optional<double>> shares = computeStepShares(graph);
    size_t step = 0; // the step of the next span row
    for (const SeriesRef& series : listSeries(graph)) {
      SeriesFigureRow row{
          graph.name, series, summarizeSeries(series.series->values, series.series->first), {}};
      if (series.kind == SeriesKind::span)
        row.share = shares[step++];
      rows.push_back(row);
    }
  }
  return rows;
}

} // namespace kvt::profiling
