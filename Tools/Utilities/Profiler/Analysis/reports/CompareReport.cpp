// The comparison's table and JSON document.
#include "CompareReport.h"

#include "ReportText.h"
#include "TerminalText.h"
#include "comparison/StepFactor.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kvt::profiling {

namespace {

// The table's grouping: slower, faster, unsure, then the others.
int tableGroup(Verdict verdict) {
  switch (verdict) {
  case Verdict::slower:
    return 0;
  case Verdict::faster:
    return 1;
  case Verdict::unsure:
    return 2;
  default:
    return 3;
  }
}

std::string orDash(const std::string& text) {
  return text == "null" ? "-" : text;
}

std::string formatInterval(const std::optional<Interval>& interval, int decimals) {
  if (!interval)
    return "-";
  std::string text = "[";
  text.append(formatFinite(interval->low, decimals)).append(", ");
  return text.append(formatFinite(interval->high, decimals)).append("]");
}

std::string withSign(double value, int decimals) {
  std::string text = value >= 0 ? "+" : "";
  return text.append(formatFinite(value, decimals));
}

// "model: run-wide shift +300.0 (+18.7 %, 98 % interval +17.9 % to +19.5 %); step factor 1.0000
// (median of 2 steps)"
void writeGraphLine(std::ostream& out, const GraphShift& graph, const ComparisonOptions& options) {
  out << analysis_internal::formatTerminalText(graph.name) << ": ";
  if (!graph.shift) {
    out << "no run-wide shift (the graph has no durations in one of the runs)\n";
    return;
  }
  const std::string level = formatSignificant((1 - 2 * options.alpha) * 100);
  out << "run-wide shift " << withSign(graph.shift->units, 1);
  if (graph.change) {
    out << " (" << withSign(graph.change->percent, 1) << " %";
    if (graph.change->interval)
      out << ", " << level << " % interval " << withSign(graph.change->interval->low, 1) << " % to "
          << withSign(graph.change->interval->high, 1) << " %";
    out << ')';
  } else if (graph.shift->interval) {
    out << " (" << level << " % interval " << withSign(graph.shift->interval->low, 1) << " to "
        << withSign(graph.shift->interval->high, 1) << ')';
  }
  const bool hasFactor = graph.stepSeries >= StepFactor::minSeries;
  if (hasFactor)
    out << "; step factor " << formatFinite(graph.ratio, 4) << " (median of " << graph.stepSeries
        << " steps)";
  if (options.relative)
    out << (hasFactor ? "; new back-end values and waits judged divided by it, each step's spans "
                        "by the median of the other steps"
                      : "; too few steps for a step factor, nothing judged net of one");
  out << '\n';
}

// "+86/+0": the executions each run needs beyond those it has.
std::string formatMoreNeeded(const ComparisonRow& row) {
  if (!row.needed)
    return "-";
  return '+' + std::to_string(row.needed->base - row.base.count) + "/+" +
         std::to_string(row.needed->next - row.next.count);
}

} // namespace

void writeComparedSideJson(std::ostream& out, const ComparedSide& side) {
  out << "{\"count\": " << side.count << ", \"p50\": " << formatOptional(side.p50) << '}';
}

void writeIntervalJson(std::ostream& out, const std::optional<Interval>& interval) {
  if (interval)
    out << '[' << formatFinite(interval->low) << ", " << formatFinite(interval->high) << ']';
  else
    out << "null";
}

void writeGraphJson(std::ostream& out, const GraphShift& graph) {
  out << "{\"name\": ";
  writeJsonString(out, graph.name);
  out << ", \"runShift\": ";
  if (!graph.shift) {
    out << "null}";
    return;
  }
  out << "{\"shift\": " << formatFinite(graph.shift->units) << ", \"changePercent\": "
      << formatFinite(graph.change ? std::optional(graph.change->percent) : std::nullopt)
      << ", \"interval\": ";
  writeIntervalJson(out, graph.change ? graph.change->interval : std::nullopt);
  out << ", \"ratio\": " << formatFinite(graph.ratio, 6) << ", \"stepSeries\": " << graph.stepSeries
      << "}}";
}

namespace {

void writeRowJson(std::ostream& out, const ComparisonRow& row) {
  out << "{\"graph\": ";
  writeJsonString(out, row.graph);
  out << ", \"series\": \"" << seriesKindName(row.kind) << "\", \"name\": ";
  writeJsonString(out, row.name);
  out << ", \"parent\": ";
  if (row.parent)
    writeJsonString(out, *row.parent);
  else
    out << "null";
  out << ", \"occurrence\": " << formatOptional(row.occurrence) << ", \"base\": ";
  writeComparedSideJson(out, row.base);
  out << ", \"new\": ";
  writeComparedSideJson(out, row.next);
  out << ", \"shift\": " << formatFinite(row.shift ? std::optional(row.shift->units) : std::nullopt)
      << ", \"changePercent\": "
      << formatFinite(row.change ? std::optional(row.change->percent) : std::nullopt)
      << ", \"interval\": ";
  writeIntervalJson(out, row.change ? row.change->interval : std::nullopt);
  out << ", \"pValue\": " << formatSignificant(row.pValue)
      << ", \"pAdjusted\": " << formatSignificant(row.pAdjusted)
      << ", \"qValue\": " << formatSignificant(row.qValue) << ", \"verdict\": \""
      << verdictName(row.verdict) << "\", \"needed\": ";
  if (row.needed)
    out << "{\"base\": " << row.needed->base - row.base.count
        << ", \"new\": " << row.needed->next - row.next.count << "}}";
  else
    out << "null}";
}

} // namespace

void writeTotalsJson(std::ostream& out, const ComparisonTotals& totals) {
  out << "{\"slower\": " << totals.slower << ", \"faster\": " << totals.faster
      << ", \"same\": " << totals.same << ", \"unsure\": " << totals.unsure
      << ", \"added\": " << totals.added << ", \"removed\": " << totals.removed
      << ", \"tested\": " << totals.tested << '}';
}

void writeComparisonTable(std::ostream& out, const Comparison& comparison) {
  for (const GraphShift& graph : comparison.graphs)
    writeGraphLine(out, graph, comparison.options);
  out << '\n';
  std::vector<const ComparisonRow*> order;
  for (const ComparisonRow& row : comparison.rows)
    order.push_back(&row);
  std::stable_sort(order.begin(), order.end(), [](const ComparisonRow* a, const ComparisonRow* b) {
    return tableGroup(a->verdict) < tableGroup(b->verdict);
  });
  std::vector<std::vector<std::string>> rows{
      {"verdict", "graph", "series", "name", "parent", "occurrence", "base n", "base p50", "new n",
       "new p50", "change %", "interval %", "p-value", "Holm p", "q", "more base/new"}};
  for (const ComparisonRow* row : order)
    rows.push_back(
        {std::string(verdictName(row->verdict)), row->graph, std::string(seriesKindName(row->kind)),
         row->name, row->parent.value_or("-"), orDash(formatOptional(row->occurrence)),
         std::to_string(row->base.count), orDash(formatOptional(row->base.p50)),
         std::to_string(row->next.count), orDash(formatOptional(row->next.p50)),
         orDash(formatFinite(row->change ? std::optional(row->change->percent) : std::nullopt, 1)),
         formatInterval(row->change ? row->change->interval : std::nullopt, 1),
         orDash(formatSignificant(row->pValue)), orDash(formatSignificant(row->pAdjusted)),
         orDash(formatSignificant(row->qValue)), formatMoreNeeded(*row)});
  analysis_internal::writeAlignedRows(out, rows, 5, "");
  const ComparisonTotals& totals = comparison.totals;
  out << "\n"
      << totals.slower << " slower, " << totals.faster << " faster, " << totals.same << " same, "
      << totals.unsure << " unsure, " << totals.added << " added, " << totals.removed
      << " removed; " << totals.tested << " series tested, alpha "
      << formatSignificant(comparison.options.alpha) << " over all of them (Holm)\n";
}

void writeComparisonJson(std::ostream& out, const Comparison& comparison,
                         const std::string& basePath, const std::string& newPath,
                         const ComparedPartials& partials) {
  const ComparisonOptions& options = comparison.options;
  out << "{\n  \"base\": ";
  writeJsonString(out, basePath);
  out << ",\n  \"new\": ";
  writeJsonString(out, newPath);
  if (partials.base || partials.next) {
    out << ",\n  \"partial\": {\"base\": ";
    writePartialJson(out, partials.base);
    out << ", \"new\": ";
    writePartialJson(out, partials.next);
    out << '}';
  }
  out << ",\n  \"alpha\": " << formatSignificant(options.alpha)
      << ",\n  \"threshold\": " << formatFinite(options.thresholdPercent)
      << ",\n  \"minChange\": " << formatFinite(options.minChangeUnits)
      << ",\n  \"relative\": " << (options.relative ? "true" : "false") << ",\n  \"graphs\": [";
  for (size_t i = 0; i < comparison.graphs.size(); ++i) {
    out << (i ? ",\n    " : "\n    ");
    writeGraphJson(out, comparison.graphs[i]);
  }
  out << (comparison.graphs.empty() ? "]" : "\n  ]") << ",\n  \"rows\": [";
  for (size_t i = 0; i < comparison.rows.size(); ++i) {
    out << (i ? ",\n    " : "\n    ");
    writeRowJson(out, comparison.rows[i]);
  }
  out << (comparison.rows.empty() ? "]" : "\n  ]") << ",\n  \"totals\": ";
  writeTotalsJson(out, comparison.totals);
  out << "\n}\n";
}

} // namespace kvt::profiling
