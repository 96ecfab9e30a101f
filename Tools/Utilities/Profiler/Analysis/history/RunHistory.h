// Which series of a run history changed, at which run, and whether the runs tell: each series
// is one value per run, searched for change points with a rank test, adjusted for every series
// of the history.
#pragma once

#include "RunSeriesFigures.h"
#include "RunWideShifts.h"
#include "comparison/RunComparison.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kvt::profiling {

struct HistoryOptions {
  ComparisonOptions comparison; // alpha, threshold, floor and relative, as compare judges them
  uint64_t minRuns = 3;         // runs on each side of a change at least
  uint64_t gate = 5;            // a slower change within the last this many runs fails the gate
};

// A change of a series (or of a graph's run-wide factor) at run: the median of the values judged
// on either side (divided by the run-wide factor in relative histories), the Hodges-Lehmann
// shift in percent of the median before with its (1 - 2 alpha) interval, and its p-value
// adjusted for every test of the history. added and removed changes carry only run and verdict.
struct HistoryChange {
  uint64_t run = 0; // index of the first run after the change
  std::optional<double> before;
  std::optional<double> after;
  std::optional<double> changePercent; // none when the median before is 0
  std::optional<Interval> interval;    // in percent; none when too few runs for the confidence
  std::optional<double> pAdjusted;     // Holm for the first change of a series, else Bonferroni
  std::optional<double> qValue;        // Benjamini-Hochberg, likewise
  Verdict verdict = Verdict::slower;   // slower, faster, added or removed
};

struct HistorySeries {
  HistorySeriesKey key;
  RunSeriesValues values;             // the figure per run, as read
  std::vector<HistoryChange> changes; // by run
};

struct HistoryGraph {
  std::string name;
  RunSeriesValues runFactor;          // per run, none where no step span has a value
  std::vector<HistoryChange> runWide; // changes of the run factor, by run
};

struct HistoryRun {
  std::string source;
  std::optional<uint64_t> createdUs;
  uint64_t executions = 0;
};

struct HistoryTotals {
  uint64_t series = 0;
  uint64_t changes = 0; // of series, every verdict
  uint64_t slower = 0;
  uint64_t faster = 0;
  uint64_t added = 0;
  uint64_t removed = 0;
  uint64_t runWide = 0;      // changes of graphs' run factors
  uint64_t slowerInGate = 0; // slower changes, of series or run factors, in the last gate runs
  uint64_t tested = 0;       // series and run factors tested, the family the adjustments count
};

struct History {
  HistoryOptions options;
  std::vector<HistoryRun> runs;
  std::vector<HistorySeries> series; // in order of first appearance
  std::vector<HistoryGraph> graphs;  // likewise
  HistoryTotals totals;
  bool tooFewRuns = false; // fewer than 2 x minRuns runs: no change can be found
};

// Why runs cannot make one history: the run at fault and what is wrong with it, worded to follow
// its name ("has no creation time to order by (a stats JSON has none)").
struct HistoryRunProblem {
  std::string source;
  std::string problem;
};

// Puts runs in the order of their creation times when byCreation (equal times keep their order),
// then checks that each run shares a series with another, or else belongs to another history.
// The problem names the first run without a creation time, or the first none of whose series
// another run has (a run without series among them).
std::optional<HistoryRunProblem> arrangeHistoryRuns(std::vector<RunSeriesFigures>& runs,
                                                    bool byCreation);

// The history of runs, oldest first. A series is tracked in the runs that have a value of it;
// its first value after run 0 is an added change, its last before the last run a removed one.
// Each series with at least 2 x minRuns values, and each graph's run factor (RunWideShifts over
// its step spans, for a graph of StepFactor::minSeries spans or more), is split where
// findChangeSplit finds it; the split counts when its p-value, adjusted by Holm's method over
// every first split of the history, is below alpha and its shift exceeds compare's margin, and
// each side is then searched again (its p-value times the tests of the history). In relative
// histories back-end records and step spans and waits are judged divided by their run's factor
// without themselves.
History buildHistory(std::vector<RunSeriesFigures> runs, const HistoryOptions& options);

} // namespace kvt::profiling
