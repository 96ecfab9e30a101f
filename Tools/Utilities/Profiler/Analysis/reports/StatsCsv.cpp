// The CSV report: the series of every graph in the order the comparison walks them.
#include "ReportText.h"
#include "StatsReport.h"
#include "statistics/SeriesList.h"
#include "statistics/SeriesSummary.h"
#include "statistics/StepShares.h"

namespace kvt::profiling {

namespace {

// A figure, or an empty field where it does not exist.
std::string formatField(std::optional<uint64_t> value) {
  return value ? std::to_string(*value) : "";
}

} // namespace

void writeStatsCsv(std::ostream& out, const RunStatistics& run) {
  out << "graph,series,name,parent,occurrence,count,mean,stddev,min,p50,p90,p99,max,first,share\n";
  for (const GraphStatistics& graph : run.graphs) {
    const std::vector<std::optional<double>> shares = computeStepShares(graph);
    size_t step = 0; // the step of the next span row
    for (const SeriesRef& series : listSeries(graph)) {
      const SeriesSummary summary = summarizeSeries(series.series->values, series.series->first);
      auto figure = [&](uint64_t value) {
        return formatField(summary.count ? std::optional(value) : std::nullopt);
      };
      std::optional<double> share;
      if (series.kind == SeriesKind::span)
        share = shares[step++];
      out << formatCsvField(graph.name) << ',' << seriesKindName(series.kind) << ','
          << formatCsvField(series.name) << ',' << formatCsvField(series.parent.value_or("")) << ','
          << formatField(series.occurrence) << ',' << summary.count << ','
          << (summary.count ? formatFixed(summary.mean) : "") << ','
          << (summary.count ? formatFixed(summary.stddev) : "") << ',' << figure(summary.min) << ','
          << figure(summary.p50) << ',' << figure(summary.p90) << ',' << figure(summary.p99) << ','
          << figure(summary.max) << ',' << formatField(summary.first) << ','
          << (share ? formatFixed(*share) : "") << '\n';
    }
  }
}

} // namespace kvt::profiling
