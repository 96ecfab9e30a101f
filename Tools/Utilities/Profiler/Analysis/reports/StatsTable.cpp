// The table report: the rows are sorted and cut to --top before the cumulative share runs down
// them, so the column reads as "these rows together take this much".
#include "Distribution.h"
#include "ReportText.h"
#include "StatsReport.h"
#include "TerminalText.h"
#include "statistics/SeriesSummary.h"
#include "statistics/StepShares.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace kvt::profiling {

namespace {

using analysis_internal::drawDistribution;
using analysis_internal::formatTerminalText;
using analysis_internal::writeAlignedRows;

std::string formatFigure(const SeriesSummary& summary, uint64_t value) {
  return summary.count ? std::to_string(value) : "-";
}

std::string formatPercent(std::optional<double> value) {
  return value ? formatFixed(*value, 1) : "-";
}

std::string formatHeaderLine(const GraphStatistics& graph) {
  const SeriesSummary duration = summarizeSeries(graph.duration.values, {});
  std::string line = formatTerminalText(graph.name) + ": " + std::to_string(duration.count) +
                     " executions counted, " + std::to_string(graph.skipped) +
                     " skipped; duration p50 " + formatFigure(duration, duration.p50) + ", p99 " +
                     formatFigure(duration, duration.p99);
  if (hasQueueWaitSeries(graph)) {
    // Executions with several queue-wait events, or none, have no queue wait: say how many did.
    const SeriesSummary wait = summarizeSeries(graph.queueWait.values, {});
    const std::string some =
        wait.count < duration.count
            ? " (" + std::to_string(wait.count) + " of " + std::to_string(duration.count) + ")"
            : "";
    line += "; queue wait" + some + " p50 " + formatFigure(wait, wait.p50) + ", p99 " +
            formatFigure(wait, wait.p99);
  }
  return line;
}

// Step positions in the order the table shows them.
std::vector<size_t> orderSteps(const GraphStatistics& graph,
                               const std::vector<std::optional<double>>& shares, StepOrder order) {
  std::vector<size_t> rows(graph.steps.size());
  std::iota(rows.begin(), rows.end(), 0);
  if (order == StepOrder::share) {
    std::stable_sort(rows.begin(), rows.end(), [&](size_t a, size_t b) {
      return shares[a].value_or(-1) > shares[b].value_or(-1);
    });
  } else if (order == StepOrder::name) {
    auto key = [&](size_t i) {
      const StepSeries& step = graph.steps[i];
      return std::tie(step.name, step.parent, step.occurrence);
    };
    std::stable_sort(rows.begin(), rows.end(), [&](size_t a, size_t b) { return key(a) < key(b); });
  }
  return rows;
}

void writeGraph(std::ostream& out, const GraphStatistics& graph, const StatsTableOptions& options) {
  out << formatHeaderLine(graph) << '\n';
  if (graph.steps.empty()) {
    out << "  no execution steps\n";
    return;
  }
  const std::vector<std::optional<double>> shares = computeStepShares(graph);
  std::vector<size_t> order = orderSteps(graph, shares, options.order);
  if (options.top && *options.top < order.size())
    order.resize(*options.top);

  std::vector<std::vector<std::string>> rows{{"step", "parent", "count", "mean", "p50", "p90",
                                              "p99", "max", "first", "share %", "cum %",
                                              "distribution"}};
  double cumulative = 0;
  for (const size_t index : order) {
    const StepSeries& step = graph.steps[index];
    const SeriesSummary span = summarizeSeries(step.span.values, step.span.first);
    if (shares[index])
      cumulative += *shares[index];
    const std::string name =
        step.occurrence ? step.name + "[" + std::to_string(step.occurrence) + "]" : step.name;
    rows.push_back({name, step.parent, std::to_string(span.count),
                    span.count ? formatFixed(span.mean, 1) : "-", formatFigure(span, span.p50),
                    formatFigure(span, span.p90), formatFigure(span, span.p99),
                    formatFigure(span, span.max), span.first ? std::to_string(*span.first) : "-",
                    formatPercent(shares[index]), shares[index] ? formatFixed(cumulative, 1) : "-",
                    drawDistribution(step.span.values)});
  }
  writeAlignedRows(out, rows, 2, "  ");
}

} // namespace

void writeStatsTable(std::ostream& out, const RunStatistics& run,
                     const StatsTableOptions& options) {
  for (size_t i = 0; i < run.graphs.size(); ++i) {
    if (i > 0)
      out << '\n';
    writeGraph(out, run.graphs[i], options);
  }
}

} // namespace kvt::profiling
