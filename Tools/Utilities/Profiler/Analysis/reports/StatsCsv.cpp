// The CSV report: the series of every graph in the order the comparison walks them.
#include "ReportText.h"
#include "StatsReport.h"
#include "tables/SeriesFigureRows.h"

namespace kvt::profiling {

namespace {

// A figure, or an empty field where it does not exist.
std::string formatField(std::optional<uint64_t> value) {
  return value ? std::to_string(*value) : "";
}

} // namespace

void writeStatsCsv(std::ostream& out, const RunStatistics& run) {
  out << "graph,series,name,parent,occurrence,count,mean,stddev,min,p50,p90,p99,max,first,share\n";
  for (const SeriesFigureRow& row : listSeriesFigureRows(run)) {
    const SeriesSummary& summary = row.summary;
    auto figure = [&](uint64_t value) {
      return formatField(summary.count ? std::optional(value) : std::nullopt);
    };
    out << formatCsvField(row.graph) << ',' << seriesKindName(row.series.kind) << ','
        << formatCsvField(row.series.name) << ',' << formatCsvField(row.series.parent.value_or(""))
        << ',' << formatField(row.series.occurrence) << ',' << summary.count << ','
        << (summary.count ? formatFixed(summary.mean) : "") << ','
        << (summary.count ? formatFixed(summary.stddev) : "") << ',' << figure(summary.min) << ','
        << figure(summary.p50) << ',' << figure(summary.p90) << ',' << figure(summary.p99) << ','
        << figure(summary.max) << ',' << formatField(summary.first) << ','
        << (row.share ? formatFixed(*row.share) : "") << '\n';
  }
}

} // namespace kvt::profiling
