// The comparison walks base in its order and looks each series up in new by a text key; what is
// left of new afterwards was added.
#include "RunComparison.h"

#include "MannWhitney.h"
#include "statistics/SeriesSummary.h"

#include <unordered_map>

namespace kvt::profiling {

namespace {

// Kind, parent, name and occurrence, with lengths first so that no two keys share a text.
std::string makeKey(const SeriesRef& series) {
  const std::string_view parent = series.parent.value_or("");
  return std::to_string(int(series.kind)) + ':' + std::to_string(parent.size()) + ':' +
         std::string(parent) + std::to_string(series.name.size()) + ':' + std::string(series.name) +
         ':' + std::to_string(series.occurrence.value_or(0));
}

ComparedSide describeSide(const Series& series) {
  if (series.values.empty())
    return {};
  return {series.values.size(), nearestRank(series.values, 50)};
}

ComparisonRow makeRow(const std::string& graph, const SeriesRef& series) {
  ComparisonRow row;
  row.graph = graph;
  row.kind = series.kind;
  row.name = series.name;
  if (series.parent)
    row.parent = std::string(*series.parent);
  row.occurrence = series.occurrence;
  return row;
}

Verdict judge(const ComparisonRow& row, double thresholdPercent) {
  if (!row.pValue || *row.pValue >= rankTestAlpha)
    return Verdict::same;
  const double base = double(*row.base.p50);
  const double next = double(*row.next.p50);
  if (next > base * (1 + thresholdPercent / 100))
    return Verdict::slower;
  if (next < base * (1 - thresholdPercent / 100))
    return Verdict::faster;
  return Verdict::same;
}

ComparisonRow compareSeries(const std::string& graph, const SeriesRef& base, const SeriesRef& next,
                            double thresholdPercent) {
  ComparisonRow row = makeRow(graph, base);
  row.base = describeSide(*base.series);
  row.next = describeSide(*next.series);
  if (row.base.p50 && row.next.p50) {
    if (*row.base.p50 > 0)
      row.changePercent =
          (double(*row.next.p50) - double(*row.base.p50)) / double(*row.base.p50) * 100;
    row.pValue = mannWhitneyPValue(base.series->values, next.series->values);
  }
  row.verdict = judge(row, thresholdPercent);
  return row;
}

void compareGraph(const std::string& name, const GraphStatistics* base, const GraphStatistics* next,
                  double thresholdPercent, std::vector<ComparisonRow>& rows) {
  const std::vector<SeriesRef> baseSeries = base ? listSeries(*base) : std::vector<SeriesRef>{};
  const std::vector<SeriesRef> nextSeries = next ? listSeries(*next) : std::vector<SeriesRef>{};
  std::unordered_map<std::string, size_t> nextByKey;
  for (size_t i = 0; i < nextSeries.size(); ++i)
    nextByKey.emplace(makeKey(nextSeries[i]), i);
  std::vector<bool> matched(nextSeries.size());
  for (const SeriesRef& series : baseSeries) {
    const auto it = nextByKey.find(makeKey(series));
    if (it == nextByKey.end()) {
      ComparisonRow row = makeRow(name, series);
      row.base = describeSide(*series.series);
      row.verdict = Verdict::removed;
      rows.push_back(std::move(row));
      continue;
    }
    matched[it->second] = true;
    rows.push_back(compareSeries(name, series, nextSeries[it->second], thresholdPercent));
  }
  for (size_t i = 0; i < nextSeries.size(); ++i) {
    if (matched[i])
      continue;
    ComparisonRow row = makeRow(name, nextSeries[i]);
    row.next = describeSide(*nextSeries[i].series);
    row.verdict = Verdict::added;
    rows.push_back(std::move(row));
  }
}

const GraphStatistics* findGraph(const RunStatistics& run, const std::string& name) {
  for (const GraphStatistics& graph : run.graphs)
    if (graph.name == name)
      return &graph;
  return nullptr;
}

} // namespace

std::string_view verdictName(Verdict verdict) {
  switch (verdict) {
  case Verdict::slower:
    return "slower";
  case Verdict::faster:
    return "faster";
  case Verdict::same:
    return "same";
  case Verdict::added:
    return "added";
  case Verdict::removed:
    return "removed";
  }
  return {};
}

Comparison compareRuns(const RunStatistics& base, const RunStatistics& next,
                       double thresholdPercent) {
  Comparison comparison;
  for (const GraphStatistics& graph : base.graphs)
    compareGraph(graph.name, &graph, findGraph(next, graph.name), thresholdPercent,
                 comparison.rows);
  for (const GraphStatistics& graph : next.graphs)
    if (!findGraph(base, graph.name))
      compareGraph(graph.name, nullptr, &graph, thresholdPercent, comparison.rows);
  for (const ComparisonRow& row : comparison.rows) {
    ComparisonTotals& totals = comparison.totals;
    uint64_t* counts[] = {&totals.slower, &totals.faster, &totals.same, &totals.added,
                          &totals.removed};
    ++*counts[int(row.verdict)];
  }
  return comparison;
}

} // namespace kvt::profiling
