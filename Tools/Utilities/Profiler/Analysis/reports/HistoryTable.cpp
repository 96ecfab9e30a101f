// The history's table: what changed, latest first, since a CI reader looks at the last runs.
#include "HistoryReport.h"

#include "ReportText.h"
#include "TerminalText.h"
#include "comparison/StepFactor.h"

#include <algorithm>

namespace kvt::profiling {

namespace {

std::string percentText(const HistoryChange& change) {
  return orDash(formatFinite(change.changePercent, 1));
}

// "model: run-wide slower at run 15, factor 1.000 -> 1.080 (+8.0 %, interval [7.5, 8.4] %,
// Holm p 1.2e-05)"
void writeGraphLines(std::ostream& out, const HistoryGraph& graph, const History& history) {
  const auto hasFactor = [](const std::optional<double>& factor) { return bool(factor); };
  if (std::none_of(graph.runFactor.begin(), graph.runFactor.end(), hasFactor)) {
    out << analysis_internal::formatTerminalText(graph.name) << ": no run-wide factor (it needs "
        << StepFactor::minSeries << " steps with spans)\n";
    return;
  }
  if (graph.runWide.empty()) {
    out << analysis_internal::formatTerminalText(graph.name) << ": no run-wide change\n";
    return;
  }
  for (const HistoryChange& change : graph.runWide) {
    out << analysis_internal::formatTerminalText(graph.name) << ": run-wide "
        << verdictName(change.verdict) << " at run " << change.run << ", factor "
        << formatFinite(change.before) << " -> " << formatFinite(change.after) << " ("
        << (change.changePercent ? withSign(*change.changePercent, 1) : "-") << " %";
    if (change.interval)
      out << ", interval " << formatInterval(change.interval, 1) << " %";
    out << ", Holm p " << formatSignificant(change.pAdjusted) << ')';
    if (history.options.comparison.relative)
      out << "; steps and back-end records judged net of it";
    out << '\n';
  }
}

void writeTotals(std::ostream& out, const History& history) {
  const HistoryTotals& totals = history.totals;
  out << history.runs.size() << " runs, " << totals.series << " series: " << totals.slower
      << " slower, " << totals.faster << " faster, " << totals.added << " added, " << totals.removed
      << " removed; " << totals.runWide << " run-wide; " << totals.slowerInGate
      << " slower within the last " << history.options.gate << " runs; alpha "
      << formatSignificant(history.options.comparison.alpha) << " over " << totals.tested
      << " series and run factors (Holm)\n";
}

} // namespace

void writeHistoryTable(std::ostream& out, const History& history) {
  for (const HistoryGraph& graph : history.graphs)
    writeGraphLines(out, graph, history);
  if (!history.graphs.empty())
    out << '\n';
  if (history.tooFewRuns)
    out << history.runs.size() << " runs: a change needs " << history.options.minRuns
        << " runs on each side, " << 2 * history.options.minRuns
        << " runs in all, so none can be found\n\n";
  std::vector<std::pair<const HistorySeries*, const HistoryChange*>> changes;
  for (const HistorySeries& series : history.series)
    for (const HistoryChange& change : series.changes)
      changes.emplace_back(&series, &change);
  std::stable_sort(changes.begin(), changes.end(),
                   [](const auto& a, const auto& b) { return a.second->run > b.second->run; });
  if (changes.empty()) {
    out << "no series changed\n\n";
  } else {
    std::vector<std::vector<std::string>> rows{{"verdict", "run", "graph", "series", "name",
                                                "parent", "occurrence", "before", "after",
                                                "change %", "interval %", "Holm p", "q", "source"}};
    for (const auto& [series, change] : changes) {
      const HistorySeriesKey& key = series->key;
      rows.push_back(
          {std::string(verdictName(change->verdict)), std::to_string(change->run), key.graph,
           std::string(seriesKindName(key.kind)), key.name, key.parent.value_or("-"),
           orDash(formatOptional(key.occurrence)), orDash(formatFinite(change->before, 1)),
           orDash(formatFinite(change->after, 1)), percentText(*change),
           formatInterval(change->interval, 1), orDash(formatSignificant(change->pAdjusted)),
           orDash(formatSignificant(change->qValue)), history.runs[change->run].source});
    }
    analysis_internal::writeAlignedRows(out, rows, 1, "");
    out << '\n';
  }
  writeTotals(out, history);
}

} // namespace kvt::profiling
