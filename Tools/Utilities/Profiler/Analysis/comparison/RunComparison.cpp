// The comparison walks base in its order and looks each series up in new by its key; what is
// left of new afterwards was added. A graph's step factor needs every matched step before the
// first row is measured; the verdicts wait until every row has its p-value, since the
// adjustment for many series needs them all.
#include "RunComparison.h"

#include "MannWhitney.h"
#include "MultipleTesting.h"
#include "NormalQuantile.h"
#include "StepFactor.h"
#include "statistics/SeriesSummary.h"

#include <algorithm>
#include <cmath>
#include <map>
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

// A series of base and its match in new, when new has one.
struct SeriesPair {
  const SeriesRef* base = nullptr;
  const SeriesRef* next = nullptr;
  std::optional<double> logShift; // steps' spans of both runs only
};

class GraphComparer {
public:
  GraphComparer(const ComparisonOptions& options, Comparison& comparison)
      : options(options), comparison(comparison) {}

  void compare(const std::string& name, const GraphStatistics* base, const GraphStatistics* next) {
    const std::vector<SeriesRef> baseSeries = base ? listSeries(*base) : std::vector<SeriesRef>{};
    const std::vector<SeriesRef> nextSeries = next ? listSeries(*next) : std::vector<SeriesRef>{};
    const std::vector<SeriesPair> pairs = pairSeries(name, baseSeries, nextSeries);
    std::vector<double> logShifts;
    for (const SeriesPair& pair : pairs)
      if (pair.logShift)
        logShifts.push_back(*pair.logShift);
    const StepFactor factor(std::move(logShifts));
    GraphShift graph{name, std::nullopt, std::nullopt, factor.ratio(), factor.seriesCount()};
    if (base && next && !base->duration.values.empty() && !next->duration.values.empty()) {
      graph.shift = estimateShift(base->duration.values, next->duration.values, confidence());
      graph.change = inPercent(*graph.shift, nearestRank(base->duration.values, 50));
    }
    comparison.graphs.push_back(std::move(graph));
    for (const SeriesPair& pair : pairs)
      comparison.rows.push_back(compareSeries(name, pair, factor));
  }

private:
  double confidence() const { return 1 - 2 * options.alpha; }

  // Base's series in order, each with its match; then new's series that base lacks.
  static std::vector<SeriesPair> pairSeries(const std::string& graph,
                                            const std::vector<SeriesRef>& baseSeries,
                                            const std::vector<SeriesRef>& nextSeries) {
    std::unordered_map<SeriesKey, size_t, SeriesKeyHash> nextByKey;
    for (size_t i = 0; i < nextSeries.size(); ++i)
      nextByKey.emplace(makeSeriesKey(graph, nextSeries[i]), i);
    std::vector<bool> matched(nextSeries.size());
    std::vector<SeriesPair> pairs;
    for (const SeriesRef& series : baseSeries) {
      SeriesPair pair{&series, nullptr, std::nullopt};
      const auto it = nextByKey.find(makeSeriesKey(graph, series));
      if (it != nextByKey.end()) {
        matched[it->second] = true;
        pair.next = &nextSeries[it->second];
        // Waits are left out: short and in whole units, their medians move in coarse steps.
        if (series.kind == SeriesKind::span)
          pair.logShift = logShift(series.series->values, pair.next->series->values);
      }
      pairs.push_back(pair);
    }
    for (size_t i = 0; i < nextSeries.size(); ++i)
      if (!matched[i])
        pairs.push_back({nullptr, &nextSeries[i], std::nullopt});
    return pairs;
  }

  ComparisonRow compareSeries(const std::string& name, const SeriesPair& pair,
                              const StepFactor& factor) {
    ComparisonRow row = makeRow(name, pair.base ? *pair.base : *pair.next);
    if (!pair.next) {
      row.base = describeSide(pair.base->series->values);
      row.verdict = Verdict::removed;
      return row;
    }
    if (!pair.base) {
      row.next = describeSide(pair.next->series->values);
      row.verdict = Verdict::added;
      return row;
    }
    const std::vector<uint64_t>& nextValues = pair.next->series->values;
    const double ratio =
        options.relative && judgedNetOfRunShift(row.kind) ? factor.ratioWithout(pair.logShift) : 1;
    if (ratio == 1)
      return measure(std::move(row), pair.base->series->values, nextValues);
    return measure(std::move(row), pair.base->series->values, netOfRunShift(nextValues, ratio));
  }

  ComparisonRow measure(ComparisonRow row, std::span<const uint64_t> base,
                        std::span<const uint64_t> next) {
    row.base = describeSide(base);
    row.next = describeSide(next);
    if (base.empty() || next.empty())
      return row;
    const RankStatistic statistic = rankStatistic(base, next);
    std::optional<RankSumNull> approximate;
    const RankSumNull& null = RankSumNull::isExactFor(statistic) ? getOrCreateExactNull(statistic)
                                                                 : approximate.emplace(statistic);
    row.shift = estimateShift(base, next, confidence(), null);
    row.change = inPercent(*row.shift, *row.base.p50);
    row.pValue = null.pValue(statistic.u);
    return row;
  }

  // An exact distribution depends on the sizes alone, which a run's series mostly share.
  const RankSumNull& getOrCreateExactNull(const RankStatistic& statistic) {
    const std::pair<uint64_t, uint64_t> sizes(statistic.sizeA, statistic.sizeB);
    auto it = exactNulls.find(sizes);
    if (it == exactNulls.end())
      it = exactNulls.emplace(sizes, RankSumNull(statistic)).first;
    return it->second;
  }

  const ComparisonOptions& options;
  Comparison& comparison;
  std::map<std::pair<uint64_t, uint64_t>, RankSumNull> exactNulls;
};

// The normal quantiles of the intervals a decision needs: the one shown (1 - 2 alpha), and the
// one whose clearing 0 passes Holm's adjustment even as the first of the tests.
struct DecisionQuantiles {
  double shown = 0;
  double test = 0;
};

// Beyond the margin, slower or faster needs the interval's near edge past the margin and a
// p-value that passes Holm's adjustment; within it, same needs the interval inside the band.
std::optional<NeededExecutions> neededToDecide(const ComparisonRow& row, double margin,
                                               const DecisionQuantiles& z) {
  const double estimate = std::abs(row.shift->units);
  if (estimate <= margin) {
    const DecisionTarget inside[] = {{margin - estimate, z.shown}};
    return neededExecutions(*row.shift, row.base.count, row.next.count, inside);
  }
  const DecisionTarget beyond[] = {{estimate - margin, z.shown}, {estimate, z.test}};
  return neededExecutions(*row.shift, row.base.count, row.next.count, beyond);
}

Verdict judge(ComparisonRow& row, const ComparisonOptions& options, const DecisionQuantiles& z) {
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
  row.needed = neededToDecide(row, margin, z);
  return Verdict::unsure;
}

void judgeRows(Comparison& comparison) {
  std::vector<double> pValues;
  for (const ComparisonRow& row : comparison.rows)
    if (row.pValue)
      pValues.push_back(*row.pValue);
  const std::vector<double> holm = holmAdjusted(pValues);
  const std::vector<double> q = benjaminiHochbergQValues(pValues);
  const double alpha = comparison.options.alpha;
  const DecisionQuantiles z{
      normalQuantile(1 - alpha),
      normalQuantile(1 - alpha / (2 * double(std::max<size_t>(pValues.size(), 1))))};
  ComparisonTotals& totals = comparison.totals;
  size_t tested = 0;
  for (ComparisonRow& row : comparison.rows) {
    if (row.pValue) {
      row.pAdjusted = holm[tested];
      row.qValue = q[tested];
      ++tested;
    }
    row.verdict = judge(row, comparison.options, z);
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

std::optional<PercentChange> inPercent(const ShiftEstimate& shift, uint64_t baseMedian) {
  if (baseMedian == 0)
    return std::nullopt;
  const double scale = 100 / double(baseMedian);
  PercentChange change{shift.units * scale, std::nullopt};
  if (shift.interval)
    change.interval = Interval{shift.interval->low * scale, shift.interval->high * scale};
  return change;
}

double marginUnits(const ComparisonRow& row, const ComparisonOptions& options) {
  return marginUnits(double(row.base.p50.value_or(0)), options);
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
