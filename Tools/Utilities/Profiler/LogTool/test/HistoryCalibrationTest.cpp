// What history promises, over seeded histories of synthesised runs of one model (fresh noise and
// a factor within 1.5 % per run): no change where none was planted, a planted step change found
// at its run (and its return, when it came back), a run-wide change told apart from a step's,
// and a one-run spike never a change.
// Fixed seeds keep it deterministic; the bench measures the same rates over many more histories.
#include "history/RunHistory.h"
#include "support/TestFiles.h"
#include "synth/SynthHistory.h"
#include "synth/SynthSteps.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

namespace kvt::profiling {
namespace {

bool isJudgedNetOfRunFactor(SeriesKind kind) {
  return kind == SeriesKind::backend || kind == SeriesKind::span || kind == SeriesKind::wait;
}

uint64_t changesOf(const History& history, const std::function<bool(const HistorySeries&)>& of) {
  uint64_t changes = 0;
  for (const HistorySeries& series : history.series)
    if (of(series))
      changes += series.changes.size();
  return changes;
}

bool noChange(const History& history, const std::string&, uint64_t, uint64_t) {
  return history.totals.changes == 0 && history.totals.runWide == 0;
}

// The step's span has a change of verdict within one run of run.
bool stepChangedAt(const History& history, const std::string& step, uint64_t run, Verdict verdict) {
  for (const HistorySeries& series : history.series)
    if (series.key.kind == SeriesKind::span && series.key.name == step)
      for (const HistoryChange& change : series.changes)
        if (change.verdict == verdict && change.run + 1 >= run && change.run <= run + 1)
          return true;
  return false;
}

bool stepSlowerAt(const History& history, const std::string& step, uint64_t from, uint64_t) {
  return stepChangedAt(history, step, from, Verdict::slower);
}

bool stepSlowerAndBack(const History& history, const std::string& step, uint64_t from,
                       uint64_t until) {
  return stepChangedAt(history, step, from, Verdict::slower) &&
         stepChangedAt(history, step, until, Verdict::faster);
}

bool stepUnchanged(const History& history, const std::string& step, uint64_t, uint64_t) {
  return changesOf(history, [&step](const HistorySeries& series) {
           return series.key.kind == SeriesKind::span && series.key.name == step;
         }) == 0;
}

// One run-wide change per graph, slower, within one run of run; and no step or back-end record
// changed (the history is judged relative).
bool oneRunWideChangeAndNoStep(const History& history, const std::string&, uint64_t run, uint64_t) {
  for (const HistoryGraph& graph : history.graphs)
    if (graph.runWide.size() != 1 || graph.runWide[0].verdict != Verdict::slower ||
        graph.runWide[0].run + 1 < run || graph.runWide[0].run > run + 1)
      return false;
  return changesOf(history, [](const HistorySeries& series) {
           return isJudgedNetOfRunFactor(series.key.kind);
         }) == 0;
}

TEST(Calibration, HistoriesOfSeededRunsKeepTheirPromises) {
  struct Case {
    const char* what;
    uint64_t from;  // the first run changed
    uint64_t until; // one past the last
    double stepScale;
    double runScale;
    double thresholdPercent;
    bool relative;
    uint32_t histories;
    uint32_t atLeast; // histories that must show what holds
    std::function<bool(const History&, const std::string&, uint64_t, uint64_t)> holds;
  };
  const Case cases[] = {
      {"equal runs", 0, 0, 1, 1, 5, false, 20, 19, noChange},
      {"a step 5 % slower from run 20", 20, 30, 1.05, 1, 2, false, 20, 18, stepSlowerAt},
      {"a step 10 % slower from run 25", 25, 30, 1.10, 1, 5, false, 20, 19, stepSlowerAt},
      {"a step 10 % slower in runs 10 to 19 alone", 10, 20, 1.10, 1, 5, false, 20, 18,
       stepSlowerAndBack},
      {"a run 8 % slower from run 15, judged relative", 15, 30, 1, 1.08, 5, true, 10, 10,
       oneRunWideChangeAndNoStep},
      {"a step 30 % slower in run 15 alone", 15, 16, 1.30, 1, 5, false, 20, 20, stepUnchanged},
  };
  const testing::TempDir dir;
  SynthOptions model;
  model.graphs = 1;
  model.steps = 6;
  model.executions = 100;
  const std::string step(StepName(FigureSource(model.seed), 0, 0).view());
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    HistoryPlan plan;
    plan.changeFrom = c.from;
    plan.changeUntil = c.until;
    plan.stepScales = {{step, c.stepScale}};
    plan.runScale = c.runScale;
    HistoryOptions options;
    options.comparison = {0.01, c.thresholdPercent, 0, c.relative};
    uint32_t held = 0;
    for (uint32_t history = 0; history < c.histories; ++history) {
      std::ostringstream err;
      std::optional<std::vector<RunSeriesFigures>> runs =
          synthesizeHistory(model, plan, history, dir.path().string(), err);
      ASSERT_TRUE(runs) << err.str();
      held += c.holds(buildHistory(std::move(*runs), options), step, c.from, c.until) ? 1 : 0;
    }
    EXPECT_GE(held, c.atLeast);
  }
}

} // namespace
} // namespace kvt::profiling
