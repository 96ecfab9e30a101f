// The comparison walks base in its order and looks each series up in new by its key; what is
// left of new afterwards was added. The verdicts wait until every row has its p-value, since the
// adjustment for many series needs them all.
#include "RunComparison.h"

#include "MannWhitney.h"
#include "MultipleTesting.h"
#include "statistics/SeriesSummary.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace kvt::profiling {

namespace {

ComparedSide describeSide(std::span<const uint64_t> values) {
  if (values.empty())
    return {};
  return {values.size(), nearestRank(values, 50)};
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

// A shift in percent of a base median, none when the median is 0 and a percentage means nothing.
std::optional<PercentChange> inPercent(const ShiftEstimate& shift, uint64_t baseMedian) {
  if (baseMedian == 0)
    return std::nullopt;
  const double scale = 100 / double(baseMedian);
  PercentChange change{shift.units * scale, std::nullopt};
  if (shift.interval)
    change.interval = Interval{shift.interval->low * scale, shift.interval->high * scale};
  return change;
}

// The values of new divided by a run's ratio, still sorted.
std::vector<uint64_t> netOfRunShift(std::span<const uint64_t> values, double ratio) {
  std::vector<uint64_t> net(values.size());
  std::transform(values.begin(), values.end(), net.begin(), [ratio](uint64_t value) {
    const double scaled = std::round(double(value) / ratio);
    return scaled >= 18446744073709551615.0 ? UINT64_MAX : uint64_t(scaled);
  });
  return net;
}

bool judgedNetOfRunShift(SeriesKind kind) {
  return kind == SeriesKind::backend || kind == SeriesKind::span || kind == SeriesKind::wait;
}

class GraphComparer {
public:
  GraphComparer(const ComparisonOptions& options, Comparison& comparison)
      : options(options), comparison(comparison) {}

  void compare(const std::string& name, const GraphStatistics* base, const GraphStatistics* next) {
    GraphShift graph{name, std::nullopt, std::nullopt, 1};
    if (base && next && !base->duration.values.empty() && !next->duration.values.empty()) {
      graph.shift = estimateShift(base->duration.values, next->duration.values, confidence());
      graph.change = inPercent(*graph.shift, nearestRank(base->duration.values, 50));
      if (graph.change)
        graph.ratio = std::max(1e-9, 1 + graph.change->percent / 100);
    }
    const double ratio = options.relative ? graph.ratio : 1;
    comparison.graphs.push_back(std::move(graph));
    compareSeries(name, base, next, ratio);
  }

private:
  double confidence() const { return 1 - 2 * options.alpha; }

  void compareSeries(const std::string& name, const GraphStatistics* base,
                     const GraphStatistics* next, double ratio) {
    const std::vector<SeriesRef> baseSeries = base ? listSeries(*base) : std::vector<SeriesRef>{};
    const std::vector<SeriesRef> nextSeries = next ? listSeries(*next) : std::vector<SeriesRef>{};
    std::unordered_map<SeriesKey, size_t, SeriesKeyHash> nextByKey;
    for (size_t i = 0; i < nextSeries.size(); ++i)
      nextByKey.emplace(makeSeriesKey(name, nextSeries[i]), i);
    std::vector<bool> matched(nextSeries.size());
    for (const SeriesRef& series : baseSeries) {
      const auto it = nextByKey.find(makeSeriesKey(name, series));
      if (it == nextByKey.end()) {
        ComparisonRow row = makeRow(name, series);
        row.base = describeSide(series.series->values);
        row.verdict = Verdict::removed;
        comparison.rows.push_back(std::move(row));
        continue;
      }
      matched[it->second] = true;
      const std::vector<uint64_t>& nextValues = nextSeries[it->second].series->values;
      if (ratio != 1 && judgedNetOfRunShift(series.kind))
        comparison.rows.push_back(measure(makeRow(name, series), series.series->values,
                                          netOfRunShift(nextValues, ratio)));
      else
        comparison.rows.push_back(
            measure(makeRow(name, series), series.series->values, nextValues));
    }
    for (size_t i = 0; i < nextSeries.size(); ++i) {
      if (matched[i])
        continue;
      ComparisonRow row = makeRow(name, nextSeries[i]);
      row.next = describeSide(nextSeries[i].series->values);
      row.verdict = Verdict::added;
      comparison.rows.push_back(std::move(row));
    }
  }

  ComparisonRow measure(ComparisonRow row, std::span<const uint64_t> base,
                        std::span<const uint64_t> next) const {
    row.base = describeSide(base);
    row.next = describeSide(next);
    if (base.empty() || next.empty())
      return row;
    row.shift = estimateShift(base, next, confidence());
    row.change = inPercent(*row.shift, *row.base.p50);
    row.pValue = mannWhitneyPValue(base, next);
    return row;
  }

  const ComparisonOptions& options;
  Comparison& comparison;
};

// Executions per run that would make the interval as narrow as the margin's band, for
// differences as spread as now; always more than either run has, since these did not tell, and
// at least the fewest that give an interval at all.
std::optional<uint64_t> neededExecutions(const ComparisonRow& row, double margin, double confidence,
                                         uint64_t smallestBounded) {
  const uint64_t floor = std::max({smallestBounded, row.base.count + 1, row.next.count + 1});
  if (row.shift->spread <= 0)
    return floor;
  if (margin <= 0)
    return std::nullopt; // no interval is narrower than nothing
  const double needed = std::ceil(samplesForWidth(row.shift->spread, 2 * margin, confidence));
  if (!std::isfinite(needed) || needed > 1e18)
    return std::nullopt;
  return std::max(uint64_t(needed), floor);
}

Verdict judge(ComparisonRow& row, const ComparisonOptions& options, uint64_t smallestBounded) {
  if (row.verdict == Verdict::added || row.verdict == Verdict::removed)
    return row.verdict;
  if (!row.pAdjusted)
    return Verdict::unsure; // a side without values tells nothing
  const double margin = marginUnits(row, options);
  const ShiftEstimate& shift = *row.shift;
  if (*row.pAdjusted < options.alpha && shift.units > margin)
    return Verdict::slower;
  if (*row.pAdjusted < options.alpha && shift.units < -margin)
    return Verdict::faster;
  if (shift.interval && shift.interval->low >= -margin && shift.interval->high <= margin)
    return Verdict::same;
  row.needed = neededExecutions(row, margin, 1 - 2 * options.alpha, smallestBounded);
  return Verdict::unsure;
}

void judgeRows(Comparison& comparison) {
  std::vector<double> pValues;
  for (const ComparisonRow& row : comparison.rows)
    if (row.pValue)
      pValues.push_back(*row.pValue);
  const std::vector<double> holm = holmAdjusted(pValues);
  const std::vector<double> q = benjaminiHochbergQValues(pValues);
  const uint64_t smallestBounded = smallestBoundedSample(1 - 2 * comparison.options.alpha);
  ComparisonTotals& totals = comparison.totals;
  size_t tested = 0;
  for (ComparisonRow& row : comparison.rows) {
    if (row.pValue) {
      row.pAdjusted = holm[tested];
      row.qValue = q[tested];
      ++tested;
    }
    row.verdict = judge(row, comparison.options, smallestBounded);
    uint64_t* counts[] = {&totals.slower, &totals.faster, &totals.same,
                          &totals.unsure, &totals.added,  &totals.removed};
    ++*counts[int(row.verdict)];
  }
  totals.tested = tested;
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
  case Verdict::unsure:
    return "unsure";
  case Verdict::added:
    return "added";
  case Verdict::removed:
    return "removed";
  }
  return {};
}

double marginUnits(const ComparisonRow& row, const ComparisonOptions& options) {
  return std::max(options.thresholdPercent / 100 * double(row.base.p50.value_or(0)),
                  options.minChangeUnits);
}

Comparison compareRuns(const RunStatistics& base, const RunStatistics& next,
                       const ComparisonOptions& options) {
  Comparison comparison;
  comparison.options = options;
  GraphComparer comparer(options, comparison);
  for (const GraphStatistics& graph : base.graphs)
    comparer.compare(graph.name, &graph, findGraph(next, graph.name));
  for (const GraphStatistics& graph : next.graphs)
    if (!findGraph(base, graph.name))
      comparer.compare(graph.name, nullptr, &graph);
  judgeRows(comparison);
  return comparison;
}

} // namespace kvt::profiling
