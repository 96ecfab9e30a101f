// The data is written by hand, like the statistics JSON, so that its keys keep their order and a
// golden file of it reads one series a line.
#include "ReportData.h"

#include "reports/CompareReport.h"
#include "reports/ReportText.h"

#include <sstream>

namespace kvt::profiling {

namespace {

template <typename Number>
void writeNumbers(std::ostream& out, const std::vector<Number>& numbers) {
  out << '[';
  for (size_t i = 0; i < numbers.size(); ++i)
    out << (i ? "," : "") << numbers[i];
  out << ']';
}

void writeOptionalString(std::ostream& out, const std::optional<std::string>& text) {
  if (text)
    writeJsonString(out, *text);
  else
    out << "null";
}

// "scale": "log", "low": L, "high": H or "scale": "linear", "low": L, "width": W: the bins,
// without the braces.
void writeBins(std::ostream& out, const Histogram& histogram) {
  out << "\"scale\": " << (histogram.logarithmic ? "\"log\"" : "\"linear\"")
      << ", \"low\": " << histogram.low;
  if (histogram.logarithmic)
    out << ", \"high\": " << histogram.high;
  else
    out << ", \"width\": " << histogram.width;
}

// {bins, "counts": [...]}.
void writeHistogram(std::ostream& out, const Histogram& histogram) {
  out << '{';
  writeBins(out, histogram);
  out << ", \"counts\": ";
  writeNumbers(out, histogram.counts);
  out << '}';
}

// Each index as its distance from the one before, the first from 0: the thinned points of a long
// run have large indexes but small gaps, and the page of a big comparison is mostly points.
std::vector<uint64_t> gapsOf(const std::vector<uint64_t>& index) {
  std::vector<uint64_t> gaps;
  uint64_t previous = 0;
  for (const uint64_t i : index) {
    gaps.push_back(i - previous);
    previous = i;
  }
  return gaps;
}

// "kind": K, "name": N, "parent": P, "occurrence": O: what identifies a series in its graph.
void writeSeriesKey(std::ostream& out, SeriesKind kind, const std::string& name,
                    const std::optional<std::string>& parent, std::optional<uint64_t> occurrence) {
  out << "\"kind\": ";
  writeJsonString(out, seriesKindName(kind));
  out << ", \"name\": ";
  writeJsonString(out, name);
  out << ", \"parent\": ";
  writeOptionalString(out, parent);
  out << ", \"occurrence\": " << formatOptional(occurrence);
}

void writeSeries(std::ostream& out, const PageSeries& series) {
  out << '{';
  writeSeriesKey(out, series.kind, series.name, series.parent, series.occurrence);
  out << ", \"share\": " << formatFixed(series.share) << ", \"summary\": ";
  writeSummaryJson(out, series.summary);
  out << ", \"box\": ";
  if (series.box)
    writeNumbers(out, std::vector<uint64_t>(series.box->begin(), series.box->end()));
  else
    out << "null";
  out << ", \"histogram\": ";
  if (series.histogram)
    writeHistogram(out, *series.histogram);
  else
    out << "null";
  out << ", \"points\": {\"values\": " << series.values << ", \"skipped\": " << series.skippedValues
      << ", \"gaps\": ";
  if (series.points.index.size() == series.values)
    out << "null"; // every value kept: the indexes count from 0
  else
    writeNumbers(out, gapsOf(series.points.index));
  out << ", \"value\": ";
  writeNumbers(out, series.points.value);
  out << "}}";
}

void writeGraph(std::ostream& out, const GraphFigures& graph) {
  out << "      {\n        \"name\": ";
  writeJsonString(out, graph.name);
  out << ",\n        \"executions\": " << graph.executions
      << ",\n        \"skipped\": " << graph.skipped
      << ",\n        \"stepMeanSum\": " << formatFixed(graph.stepMeanSum)
      << ",\n        \"series\": [";
  for (size_t i = 0; i < graph.series.size(); ++i) {
    out << (i ? ",\n" : "\n") << "          ";
    writeSeries(out, graph.series[i]);
  }
  out << "\n        ]\n      }";
}

void writeRun(std::ostream& out, const RunFigures& run) {
  out << "{\n    \"log\": ";
  writeJsonString(out, run.log);
  if (run.partial) {
    out << ",\n    \"partial\": ";
    writePartialJson(out, run.partial);
  }
  out << ",\n    \"graphs\": [";
  for (size_t i = 0; i < run.graphs.size(); ++i) {
    out << (i ? ",\n" : "\n");
    writeGraph(out, run.graphs[i]);
  }
  out << (run.graphs.empty() ? "]" : "\n    ]") << "\n  }";
}

void writeOverlay(std::ostream& out, const std::optional<OverlaidHistograms>& overlay) {
  if (!overlay) {
    out << "null";
    return;
  }
  out << '{';
  writeBins(out, overlay->base); // both share the bins
  out << ", \"base\": ";
  writeNumbers(out, overlay->base.counts);
  out << ", \"new\": ";
  writeNumbers(out, overlay->next.counts);
  out << '}';
}

void writeComparisonRow(std::ostream& out, const PageComparisonRow& shown) {
  const ComparisonRow& row = shown.row;
  out << "{\"graph\": ";
  writeJsonString(out, row.graph);
  out << ", ";
  writeSeriesKey(out, row.kind, row.name, row.parent, row.occurrence);
  out << ", \"verdict\": ";
  writeJsonString(out, verdictName(row.verdict));
  out << ", \"base\": ";
  writeComparedSideJson(out, row.base);
  out << ", \"new\": ";
  writeComparedSideJson(out, row.next);
  out << ", \"changePercent\": "
      << formatFinite(row.change ? std::optional(row.change->percent) : std::nullopt)
      << ", \"interval\": ";
  writeIntervalJson(out, row.change ? row.change->interval : std::nullopt);
  out << ", \"margin\": " << formatFinite(shown.marginPercent)
      << ", \"pAdjusted\": " << formatSignificant(row.pAdjusted) << ", \"needed\": ";
  if (shown.needed)
    out << "{\"base\": " << shown.needed->base << ", \"new\": " << shown.needed->next << '}';
  else
    out << "null";
  out << ", \"overlay\": ";
  writeOverlay(out, shown.overlay);
  out << '}';
}

void writeComparison(std::ostream& out, const std::optional<PageComparison>& comparison) {
  out << ",\n  \"comparison\": ";
  if (!comparison) {
    out << "null";
    return;
  }
  const ComparisonOptions& options = comparison->options;
  out << "{\n    \"base\": ";
  writeJsonString(out, comparison->basePath);
  if (comparison->basePartial) {
    out << ",\n    \"basePartial\": ";
    writePartialJson(out, comparison->basePartial);
  }
  out << ",\n    \"new\": ";
  writeJsonString(out, comparison->newPath);
  out << ",\n    \"alpha\": " << formatSignificant(options.alpha)
      << ",\n    \"threshold\": " << formatFinite(options.thresholdPercent)
      << ",\n    \"minChange\": " << formatFinite(options.minChangeUnits)
      << ",\n    \"relative\": " << (options.relative ? "true" : "false") << ",\n    \"graphs\": [";
  for (size_t i = 0; i < comparison->graphs.size(); ++i) {
    out << (i ? ",\n" : "\n") << "      ";
    writeGraphJson(out, comparison->graphs[i]);
  }
  out << (comparison->graphs.empty() ? "]" : "\n    ]") << ",\n    \"totals\": ";
  writeTotalsJson(out, comparison->totals);
  out << ",\n    \"rows\": [";
  for (size_t i = 0; i < comparison->rows.size(); ++i) {
    out << (i ? ",\n" : "\n") << "      ";
    writeComparisonRow(out, comparison->rows[i]);
  }
  out << (comparison->rows.empty() ? "]" : "\n    ]") << "\n  }";
}

void writeHistory(std::ostream& out, const std::optional<PageHistory>& history) {
  if (!history) {
    out << "null";
    return;
  }
  std::ostringstream json;
  writeHistoryJson(json, history->history, history->options);
  std::string text = json.str();
  while (!text.empty() && text.back() == '\n')
    text.pop_back();
  out << text;
}

// json as it may sit in a script element, and without the blanks after its colons and commas,
// which would make a big comparison's page a tenth larger: every '<' as \u003c, every string as
// it was.
void writeForScript(std::ostream& out, const std::string& json) {
  bool inString = false;
  bool escaped = false;
  char previous = 0;
  for (const char c : json) {
    if (inString) {
      inString = escaped || c != '"';
      escaped = !escaped && c == '\\';
    } else if (c == '"') {
      inString = true;
    } else if (c == ' ' && (previous == ':' || previous == ',')) {
      continue;
    }
    previous = c;
    if (c == '<')
      out << "\\u003c";
    else
      out << c;
  }
}

} // namespace

void writeReportData(std::ostream& out, const ReportInput& input) {
  std::ostringstream data;
  data << "{\n  \"schema\": " << reportDataSchema << ",\n  \"title\": ";
  writeJsonString(data, input.title);
  data << ",\n  \"unit\": ";
  writeJsonString(data, reportUnit);
  data << ",\n  \"skipFirst\": " << input.skipFirst << ",\n  \"run\": ";
  if (input.history)
    data << "null";
  else
    writeRun(data, input.run);
  writeComparison(data, input.comparison);
  data << ",\n  \"history\": ";
  writeHistory(data, input.history);
  data << "\n}\n";
  writeForScript(out, data.str());
}

} // namespace kvt::profiling
