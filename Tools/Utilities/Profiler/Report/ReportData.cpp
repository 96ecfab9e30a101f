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

// {"scale": "log", "low": L, "high": H, "counts": [...]} or {"scale": "linear", "low": L,
// "width": W, "counts": [...]}.
void writeHistogram(std::ostream& out, const Histogram& histogram) {
  out << "{\"scale\": " << (histogram.logarithmic ? "\"log\"" : "\"linear\"")
      << ", \"low\": " << histogram.low;
  if (histogram.logarithmic)
    out << ", \"high\": " << histogram.high;
  else
    out << ", \"width\": " << histogram.width;
  out << ", \"counts\": ";
  writeNumbers(out, histogram.counts);
  out << '}';
}

void writeSeries(std::ostream& out, const SeriesFigures& series) {
  out << "{\"kind\": ";
  writeJsonString(out, seriesKindName(series.kind));
  out << ", \"name\": ";
  writeJsonString(out, series.name);
  out << ", \"parent\": ";
  writeOptionalString(out, series.parent);
  out << ", \"occurrence\": " << formatOptional(series.occurrence)
      << ", \"share\": " << formatFixed(series.share) << ", \"summary\": ";
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
      << ", \"index\": ";
  if (series.points.index.size() == series.values)
    out << "null"; // every value kept: the indexes count from 0
  else
    writeNumbers(out, series.points.index);
  out << ", \"value\": ";
  writeNumbers(out, series.points.value);
  out << "}}";
}

void writeGraph(std::ostream& out, const GraphFigures& graph) {
  out << "        {\n          \"name\": ";
  writeJsonString(out, graph.name);
  out << ",\n          \"executions\": " << graph.executions
      << ",\n          \"skipped\": " << graph.skipped
      << ",\n          \"stepMeanSum\": " << formatFixed(graph.stepMeanSum)
      << ",\n          \"series\": [";
  for (size_t i = 0; i < graph.series.size(); ++i) {
    out << (i ? ",\n" : "\n") << "            ";
    writeSeries(out, graph.series[i]);
  }
  out << "\n          ]\n        }";
}

void writeRun(std::ostream& out, const RunFigures& run) {
  out << "    {\n      \"log\": ";
  writeJsonString(out, run.log);
  if (run.partial) {
    out << ",\n      \"partial\": ";
    writePartialJson(out, run.partial);
  }
  out << ",\n      \"graphs\": [";
  for (size_t i = 0; i < run.graphs.size(); ++i) {
    out << (i ? ",\n" : "\n");
    writeGraph(out, run.graphs[i]);
  }
  out << (run.graphs.empty() ? "]" : "\n      ]") << "\n    }";
}

void writeComparison(std::ostream& out, const std::optional<ComparisonFigures>& figures) {
  out << ",\n  \"comparison\": ";
  if (!figures) {
    out << "null,\n  \"overlays\": null";
    return;
  }
  std::ostringstream comparison;
  writeComparisonJson(comparison, figures->comparison, figures->basePath, figures->newPath);
  std::string text = comparison.str();
  while (!text.empty() && text.back() == '\n')
    text.pop_back();
  for (size_t line = text.find('\n'); line != std::string::npos; line = text.find('\n', line + 1))
    text.insert(line + 1, "  "); // its lines indented as a value of the data
  out << text << ",\n  \"overlays\": [";
  for (size_t i = 0; i < figures->overlays.size(); ++i) {
    const std::optional<OverlaidHistograms>& overlay = figures->overlays[i];
    out << (i ? ",\n" : "\n") << "    ";
    if (!overlay) {
      out << "null";
      continue;
    }
    out << "{\"base\": ";
    writeHistogram(out, overlay->base);
    out << ", \"new\": ";
    writeHistogram(out, overlay->next);
    out << '}';
  }
  out << (figures->overlays.empty() ? "]" : "\n  ]");
}

} // namespace

void writeReportData(std::ostream& out, const ReportInput& input) {
  std::ostringstream data;
  data << "{\n  \"schema\": " << reportDataSchema << ",\n  \"title\": ";
  writeJsonString(data, input.title);
  data << ",\n  \"skipFirst\": " << input.skipFirst << ",\n  \"runs\": [";
  for (size_t i = 0; i < input.runs.size(); ++i) {
    data << (i ? ",\n" : "\n");
    writeRun(data, input.runs[i]);
  }
  data << "\n  ]";
  writeComparison(data, input.comparison);
  data << "\n}\n";
  for (const char c : data.str()) {
    if (c == '<')
      out << "\\u003c";
    else
      out << c;
  }
}

} // namespace kvt::profiling
