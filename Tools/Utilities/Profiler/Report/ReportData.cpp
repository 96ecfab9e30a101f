// The data is written by hand, like the statistics JSON, so that its keys keep their order and a
// golden file of it reads one series a line.
#include "ReportData.h"

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
  if (series.histogram) {
    out << "{\"low\": " << series.histogram->low << ", \"high\": " << series.histogram->high
        << ", \"counts\": ";
    writeNumbers(out, series.histogram->counts);
    out << '}';
  } else {
    out << "null";
  }
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
  out << ",\n      \"graphs\": [";
  for (size_t i = 0; i < run.graphs.size(); ++i) {
    out << (i ? ",\n" : "\n");
    writeGraph(out, run.graphs[i]);
  }
  out << (run.graphs.empty() ? "]" : "\n      ]") << "\n    }";
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
  data << "\n  ]\n}\n";
  for (const char c : data.str()) {
    if (c == '<')
      out << "\\u003c";
    else
      out << c;
  }
}

} // namespace kvt::profiling
