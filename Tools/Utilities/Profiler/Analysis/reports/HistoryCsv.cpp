// The long table of a history's values: a row per value, so that any engine can chart or
// query it without knowing the JSON's shape.
#include "HistoryReport.h"

#include "ReportText.h"

namespace kvt::profiling {

void writeHistoryCsv(std::ostream& out, const History& history) {
  out << "run,source,graph,series,name,parent,occurrence,value\n";
  for (size_t run = 0; run < history.runs.size(); ++run) {
    const std::string source = formatCsvField(history.runs[run].source);
    for (const HistorySeries& series : history.series) {
      if (!series.values[run])
        continue;
      const HistorySeriesKey& key = series.key;
      out << run << ',' << source << ',' << formatCsvField(key.graph) << ','
          << seriesKindName(key.kind) << ',' << formatCsvField(key.name) << ','
          << formatCsvField(key.parent.value_or("")) << ','
          << (key.occurrence ? std::to_string(*key.occurrence) : "") << ','
          << formatShortest(series.values[run]) << '\n';
    }
  }
}

} // namespace kvt::profiling
