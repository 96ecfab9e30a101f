// Two passes: every series' first split is found before any is judged, since Holm's adjustment
// needs all their p-values; a side of a split that counted is searched again only then.
#include "RunHistory.h"

#include "ChangeSplit.h"
#include "RankableValues.h"
#include "comparison/MultipleTesting.h"
#include "comparison/StepFactor.h"
#include "statistics/SeriesSummary.h"

#include <algorithm>
#include <functional>
#include <map>
#include <span>

namespace kvt::profiling {

namespace history_internal {

// What is searched for changes: a series or a graph's run factor, as the values judged, only in
// the runs that have one.
struct Subject {
  std::vector<double> values;
  std::vector<uint64_t> runs; // the run of each value
  std::vector<HistoryChange>* changes = nullptr;
  std::optional<ChangeSplit> firstSplit;
};

bool judgedNetOfRunFactor(SeriesKind kind) {
  return kind == SeriesKind::backend || kind == SeriesKind::span || kind == SeriesKind::wait;
}

class ChangeJudge {
public:
  ChangeJudge(const HistoryOptions& options, uint64_t tested) : options(options), tested(tested) {}

  // Records the change at split of the values from lo to hi (and, for a change that came back,
  // its return) when it exceeds the margin, then searches each part again. A part's change
  // counts below alpha after Bonferroni over tested.
  void judge(Subject& subject, size_t lo, size_t hi, const ChangeSplit& split, double pAdjusted,
             double qValue) const {
    const size_t at = lo + split.at;
    const size_t back = split.back ? lo + *split.back : hi;
    record(subject, lo, at, back, pAdjusted, qValue);
    if (split.back)
      record(subject, at, back, hi, pAdjusted, qValue);
    searchAgain(subject, lo, at);
    searchAgain(subject, at, back);
    searchAgain(subject, back, hi);
  }

private:
  void searchAgain(Subject& subject, size_t lo, size_t hi) const {
    if (lo == hi)
      return;
    const std::optional<ChangeSplit> split = findChangeSplit(
        std::span<const double>(subject.values).subspan(lo, hi - lo), options.minRuns);
    if (!split)
      return;
    const double adjusted = std::min(1.0, split->pValue * double(tested));
    if (adjusted < options.comparison.alpha)
      judge(subject, lo, hi, *split, adjusted, adjusted);
  }

  // The change at the value at between the values from lo and those up to end, when it exceeds
  // the margin.
  void record(Subject& subject, size_t lo, size_t at, size_t end, double pAdjusted,
              double qValue) const {
    const std::span<const double> values(subject.values);
    std::optional<HistoryChange> change =
        measure(values.subspan(lo, at - lo), values.subspan(at, end - at));
    if (!change)
      return;
    change->run = subject.runs[at];
    change->pAdjusted = pAdjusted;
    change->qValue = qValue;
    subject.changes->push_back(*change);
  }

  // The change from before to after, none when it lies within the margin.
  std::optional<HistoryChange> measure(std::span<const double> before,
                                       std::span<const double> after) const {
    std::vector<double> both(before.begin(), before.end());
    both.insert(both.end(), after.begin(), after.end());
    const double scale = rankableScale(both);
    const std::vector<uint64_t> sortedBefore = sortedRankable(before, scale);
    const std::vector<uint64_t> sortedAfter = sortedRankable(after, scale);
    const ShiftEstimate shift =
        estimateShift(sortedBefore, sortedAfter, 1 - 2 * options.comparison.alpha);
    const uint64_t scaledBeforeMedian = nearestRank(sortedBefore, 50);
    const double beforeMedian = double(scaledBeforeMedian) / scale;
    const double units = shift.units / scale;
    const double margin = marginUnits(beforeMedian, options.comparison);
    if (units <= margin && units >= -margin)
      return std::nullopt;
    HistoryChange change;
    change.before = beforeMedian;
    change.after = double(nearestRank(sortedAfter, 50)) / scale;
    change.verdict = units > margin ? Verdict::slower : Verdict::faster;
    if (const std::optional<PercentChange> percent = inPercent(shift, scaledBeforeMedian)) {
      change.changePercent = percent->percent;
      change.interval = percent->interval;
    }
    return change;
  }

  const HistoryOptions& options;
  uint64_t tested;
};

// The values of a series (or factor) in the runs that have one, divided by divisor's value.
Subject makeSubject(const RunSeriesValues& values, std::vector<HistoryChange>& changes,
                    const std::function<double(size_t)>& divisor) {
  Subject subject;
  subject.changes = &changes;
  for (size_t run = 0; run < values.size(); ++run) {
    if (!values[run])
      continue;
    subject.values.push_back(*values[run] / divisor(run));
    subject.runs.push_back(run);
  }
  return subject;
}

// The added change at a series' first value after run 0 and the removed one after its last
// value before the last run.
void addPresenceChanges(HistorySeries& series) {
  const RunSeriesValues& values = series.values;
  const auto first = std::find_if(values.begin(), values.end(), [](auto& v) { return bool(v); });
  if (first == values.end())
    return;
  const auto last = std::find_if(values.rbegin(), values.rend(), [](auto& v) { return bool(v); });
  if (first != values.begin())
    series.changes.push_back(
        {uint64_t(first - values.begin()), {}, {}, {}, {}, {}, {}, Verdict::added});
  if (last != values.rbegin())
    series.changes.push_back(
        {uint64_t(values.rend() - last), {}, {}, {}, {}, {}, {}, Verdict::removed});
}

void countTotals(History& history) {
  HistoryTotals& totals = history.totals;
  const uint64_t runs = history.runs.size();
  const auto inGate = [&](const HistoryChange& change) {
    return change.verdict == Verdict::slower && runs - change.run <= history.options.gate;
  };
  totals.series = history.series.size();
  for (const HistorySeries& series : history.series) {
    for (const HistoryChange& change : series.changes) {
      ++totals.changes;
      totals.slower += change.verdict == Verdict::slower ? 1 : 0;
      totals.faster += change.verdict == Verdict::faster ? 1 : 0;
      totals.added += change.verdict == Verdict::added ? 1 : 0;
      totals.removed += change.verdict == Verdict::removed ? 1 : 0;
      totals.slowerInGate += inGate(change) ? 1 : 0;
    }
  }
  for (const HistoryGraph& graph : history.graphs) {
    totals.runWide += graph.runWide.size();
    for (const HistoryChange& change : graph.runWide)
      totals.slowerInGate += inGate(change) ? 1 : 0;
  }
}

// The first run none of whose series another run has; none for fewer than 2 runs.
std::optional<size_t> findRunSharingNoSeries(const std::vector<RunSeriesFigures>& runs) {
  if (runs.size() < 2)
    return std::nullopt;
  std::map<HistorySeriesKey, size_t> runsWith;
  for (const RunSeriesFigures& run : runs) {
    std::map<HistorySeriesKey, bool> seen;
    for (const RunSeriesFigure& figure : run.series)
      if (seen.emplace(figure.key, true).second)
        ++runsWith[figure.key];
  }
  for (size_t i = 0; i < runs.size(); ++i) {
    const auto shared = [&runsWith](const RunSeriesFigure& figure) {
      return runsWith[figure.key] > 1;
    };
    if (std::none_of(runs[i].series.begin(), runs[i].series.end(), shared))
      return i;
  }
  return std::nullopt;
}

} // namespace history_internal

std::optional<HistoryRunProblem> arrangeHistoryRuns(std::vector<RunSeriesFigures>& runs,
                                                    bool byCreation) {
  if (byCreation) {
    for (const RunSeriesFigures& run : runs)
      if (!run.createdUs)
        return HistoryRunProblem{run.source,
                                 "has no creation time to order by (a stats JSON has none)"};
    std::stable_sort(runs.begin(), runs.end(),
                     [](const RunSeriesFigures& a, const RunSeriesFigures& b) {
                       return *a.createdUs < *b.createdUs;
                     });
  }
  if (const std::optional<size_t> alone = history_internal::findRunSharingNoSeries(runs))
    return HistoryRunProblem{runs[*alone].source,
                             runs[*alone].series.empty()
                                 ? "has no series: neither a log with executions nor a stats JSON "
                                   "with graphs"
                                 : "shares no series with the other runs"};
  return std::nullopt;
}

History buildHistory(std::vector<RunSeriesFigures> runs, const HistoryOptions& options) {
  using namespace history_internal;
  History history;
  history.options = options;
  const size_t runCount = runs.size();
  std::map<HistorySeriesKey, size_t> seriesIndex;
  std::map<std::string, size_t> graphIndex;
  for (size_t run = 0; run < runCount; ++run) {
    for (RunSeriesFigure& figure : runs[run].series) {
      if (graphIndex.emplace(figure.key.graph, history.graphs.size()).second)
        history.graphs.push_back({figure.key.graph, RunSeriesValues(runCount), {}});
      const auto [it, added] = seriesIndex.emplace(figure.key, history.series.size());
      if (added)
        history.series.push_back({std::move(figure.key), RunSeriesValues(runCount), {}});
      history.series[it->second].values[run] = figure.value;
    }
    history.runs.push_back(
        {std::move(runs[run].source), runs[run].createdUs, runs[run].executions});
  }
  history.tooFewRuns = runCount < 2 * options.minRuns;

  // Each graph's run factor, and each series divided by its own when relative.
  std::vector<Subject> subjects;
  for (HistoryGraph& graph : history.graphs) {
    std::vector<const RunSeriesValues*> spans;
    std::vector<size_t> spanSeries;
    for (size_t i = 0; i < history.series.size(); ++i) {
      if (history.series[i].key.graph == graph.name &&
          history.series[i].key.kind == SeriesKind::span) {
        spans.push_back(&history.series[i].values);
        spanSeries.push_back(i);
      }
    }
    const RunWideShifts shifts(spans, runCount);
    const bool hasRunFactor = spans.size() >= StepFactor::minSeries;
    if (hasRunFactor) {
      for (size_t run = 0; run < runCount; ++run)
        graph.runFactor[run] = shifts.factor(run);
      subjects.push_back(makeSubject(graph.runFactor, graph.runWide, [](size_t) { return 1.0; }));
    }
    for (size_t i = 0; i < history.series.size(); ++i) {
      HistorySeries& series = history.series[i];
      if (series.key.graph != graph.name)
        continue;
      std::function<double(size_t)> divisor = [](size_t) { return 1.0; };
      if (options.comparison.relative && hasRunFactor && judgedNetOfRunFactor(series.key.kind)) {
        const auto own = std::find(spanSeries.begin(), spanSeries.end(), i);
        const std::optional<size_t> leftOut = own == spanSeries.end()
                                                  ? std::nullopt
                                                  : std::optional(size_t(own - spanSeries.begin()));
        divisor = [&shifts, leftOut](size_t run) {
          return shifts.factor(run, leftOut).value_or(1);
        };
      }
      subjects.push_back(makeSubject(series.values, series.changes, divisor));
    }
  }

  std::vector<double> pValues;
  for (Subject& subject : subjects) {
    subject.firstSplit = findChangeSplit(subject.values, options.minRuns);
    if (subject.firstSplit)
      pValues.push_back(subject.firstSplit->pValue);
  }
  const std::vector<double> holm = holmAdjusted(pValues);
  const std::vector<double> q = benjaminiHochbergQValues(pValues);
  history.totals.tested = pValues.size();
  const ChangeJudge judge(options, pValues.size());
  size_t tested = 0;
  for (Subject& subject : subjects) {
    if (!subject.firstSplit)
      continue;
    if (holm[tested] < options.comparison.alpha)
      judge.judge(subject, 0, subject.values.size(), *subject.firstSplit, holm[tested], q[tested]);
    ++tested;
  }

  const auto byRun = [](const HistoryChange& a, const HistoryChange& b) {
    return a.run < b.run || (a.run == b.run && int(a.verdict) < int(b.verdict));
  };
  for (HistorySeries& series : history.series) {
    addPresenceChanges(series);
    std::sort(series.changes.begin(), series.changes.end(), byRun);
  }
  for (HistoryGraph& graph : history.graphs)
    std::sort(graph.runWide.begin(), graph.runWide.end(), byRun);
  countTotals(history);
  return history;
}

} // namespace kvt::profiling
