// The history as one JSON document, written by hand so that its keys keep the documented order
// and each run, series and graph sits on a line of its own.
#include "HistoryReport.h"

#include "ReportText.h"

#include <charconv>
#include <cmath>

namespace kvt::profiling {

namespace {

void writeOptionalString(std::ostream& out, const std::optional<std::string>& text) {
  if (text)
    writeJsonString(out, *text);
  else
    out << "null";
}

void writeValues(std::ostream& out, const RunSeriesValues& values) {
  out << '[';
  for (size_t i = 0; i < values.size(); ++i)
    out << (i ? ", " : "") << formatShortest(values[i]);
  out << ']';
}

void writeChanges(std::ostream& out, const std::vector<HistoryChange>& changes) {
  out << '[';
  for (size_t i = 0; i < changes.size(); ++i) {
    const HistoryChange& change = changes[i];
    out << (i ? ", " : "") << "{\"run\": " << change.run
        << ", \"before\": " << formatFinite(change.before)
        << ", \"after\": " << formatFinite(change.after)
        << ", \"changePercent\": " << formatFinite(change.changePercent) << ", \"interval\": ";
    writeIntervalJson(out, change.interval);
    out << ", \"pAdjusted\": " << formatSignificant(change.pAdjusted)
        << ", \"qValue\": " << formatSignificant(change.qValue) << ", \"verdict\": \""
        << verdictName(change.verdict) << "\"}";
  }
  out << ']';
}

void writeSeries(std::ostream& out, const HistorySeries& series) {
  const HistorySeriesKey& key = series.key;
  out << "{\"graph\": ";
  writeJsonString(out, key.graph);
  out << ", \"series\": \"" << seriesKindName(key.kind) << "\", \"name\": ";
  writeJsonString(out, key.name);
  out << ", \"parent\": ";
  writeOptionalString(out, key.parent);
  out << ", \"occurrence\": " << formatOptional(key.occurrence) << ", \"values\": ";
  writeValues(out, series.values);
  out << ", \"changes\": ";
  writeChanges(out, series.changes);
  out << '}';
}

// Writes items as a JSON array, one item a line, each by writeItem.
template <typename Items, typename WriteItem>
void writeLines(std::ostream& out, const Items& items, WriteItem writeItem) {
  out << '[';
  for (size_t i = 0; i < items.size(); ++i) {
    out << (i ? ",\n    " : "\n    ");
    writeItem(items[i]);
  }
  out << (items.empty() ? "]" : "\n  ]");
}

} // namespace

std::string formatShortest(std::optional<double> value) {
  if (!value || !std::isfinite(*value))
    return "null";
  char text[64];
  const auto result = std::to_chars(text, text + sizeof text, *value);
  return std::string(text, result.ptr);
}

void writeHistoryJson(std::ostream& out, const History& history,
                      const HistoryReportOptions& options) {
  const HistoryOptions& judged = history.options;
  out << "{\n  \"figure\": \"" << historyFigureName(options.figure)
      << "\",\n  \"skipFirst\": " << options.skipFirst
      << ",\n  \"alpha\": " << formatSignificant(judged.comparison.alpha)
      << ",\n  \"threshold\": " << formatFinite(judged.comparison.thresholdPercent)
      << ",\n  \"minChange\": " << formatFinite(judged.comparison.minChangeUnits)
      << ",\n  \"minRuns\": " << judged.minRuns
      << ",\n  \"relative\": " << (judged.comparison.relative ? "true" : "false")
      << ",\n  \"gate\": " << judged.gate
      << ",\n  \"tooFewRuns\": " << (history.tooFewRuns ? "true" : "false") << ",\n  \"runs\": ";
  writeLines(out, history.runs, [&out](const HistoryRun& run) {
    out << "{\"source\": ";
    writeJsonString(out, run.source);
    out << ", \"created\": " << formatOptional(run.createdUs)
        << ", \"executions\": " << run.executions << '}';
  });
  out << ",\n  \"series\": ";
  writeLines(out, history.series,
             [&out](const HistorySeries& series) { writeSeries(out, series); });
  out << ",\n  \"graphs\": ";
  writeLines(out, history.graphs, [&out](const HistoryGraph& graph) {
    out << "{\"graph\": ";
    writeJsonString(out, graph.name);
    out << ", \"runFactor\": ";
    writeValues(out, graph.runFactor);
    out << ", \"runWide\": ";
    writeChanges(out, graph.runWide);
    out << '}';
  });
  const HistoryTotals& totals = history.totals;
  out << ",\n  \"totals\": {\"series\": " << totals.series << ", \"changes\": " << totals.changes
      << ", \"slower\": " << totals.slower << ", \"faster\": " << totals.faster
      << ", \"added\": " << totals.added << ", \"removed\": " << totals.removed
      << ", \"runWide\": " << totals.runWide << ", \"slowerInGate\": " << totals.slowerInGate
      << ", \"tested\": " << totals.tested << "}\n}\n";
}

} // namespace kvt::profiling
