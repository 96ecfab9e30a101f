// The JSON report, written by hand so that its keys keep the documented order and each series
// sits on a line of its own.
#include "ReportText.h"
#include "StatsReport.h"
#include "statistics/SeriesSummary.h"
#include "statistics/StepShares.h"

namespace kvt::profiling {

namespace {

void writeSeries(std::ostream& out, const Series& series) {
  writeSummaryJson(out, summarizeSeries(series.values, series.first));
}

void writeGraph(std::ostream& out, const GraphStatistics& graph) {
  out << "    {\n      \"name\": ";
  writeJsonString(out, graph.name);
  out << ",\n      \"executions\": " << graph.executions - graph.skipped
      << ",\n      \"duration\": ";
  writeSeries(out, graph.duration);
  out << ",\n      \"queueWait\": ";
  if (hasQueueWaitSeries(graph))
    writeSeries(out, graph.queueWait);
  else
    out << "null";
  out << ",\n      \"backend\": [";
  for (size_t i = 0; i < graph.backend.size(); ++i) {
    const BackendSeries& record = graph.backend[i];
    out << (i ? ",\n" : "\n") << "        {\"name\": ";
    writeJsonString(out, record.name);
    out << ", \"occurrence\": " << record.occurrence << ", \"value\": ";
    writeSeries(out, record.value);
    out << '}';
  }
  out << (graph.backend.empty() ? "]" : "\n      ]") << ",\n      \"steps\": [";
  const std::vector<std::optional<double>> shares = computeStepShares(graph);
  for (size_t i = 0; i < graph.steps.size(); ++i) {
    const StepSeries& step = graph.steps[i];
    out << (i ? ",\n" : "\n") << "        {\"name\": ";
    writeJsonString(out, step.name);
    out << ", \"parent\": ";
    writeJsonString(out, step.parent);
    out << ", \"occurrence\": " << step.occurrence << ", \"span\": ";
    writeSeries(out, step.span);
    out << ", \"wait\": ";
    if (hasValues(step.wait))
      writeSeries(out, step.wait);
    else
      out << "null";
    out << ", \"share\": " << formatFixed(shares[i]) << '}';
  }
  out << (graph.steps.empty() ? "]" : "\n      ]") << "\n    }";
}

} // namespace

void writeStatsJson(std::ostream& out, const RunStatistics& run, const std::string& logPath,
                    uint64_t skipFirst) {
  out << "{\n  \"log\": ";
  writeJsonString(out, logPath);
  out << ",\n  \"skipFirst\": " << skipFirst;
  if (run.partial) {
    out << ",\n  \"partial\": ";
    writePartialJson(out, run.partial);
  }
  out << ",\n  \"graphs\": [";
  for (size_t i = 0; i < run.graphs.size(); ++i) {
    out << (i ? ",\n" : "\n");
    writeGraph(out, run.graphs[i]);
  }
  out << (run.graphs.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

} // namespace kvt::profiling
