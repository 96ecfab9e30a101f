// What compare promises, over seeded pairs of synthesised runs: runs that differ only by chance
// are rarely called slower, a planted change is found, too few executions are said to be too few,
// a run-wide change is told apart from a step's, and one large step that moved does not make the
// others look moved when judged relative to the run. Fixed seeds keep it deterministic; the bench
// measures the same rates over many more pairs.
#include "support/TestFiles.h"
#include "synth/SynthComparison.h"
#include "synth/SynthSteps.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

namespace kvt::profiling {
namespace {

// The step whose spans a case scales, by its place in the model's only graph.
std::string scaledStep(const SynthOptions& model, uint32_t place) {
  return std::string(StepName(FigureSource(model.seed), 0, place).view());
}

bool isStep(const ComparisonRow& row) {
  return row.kind == SeriesKind::span || row.kind == SeriesKind::wait;
}

const ComparisonRow* findRow(const Comparison& comparison, SeriesKind kind,
                             const std::string& name) {
  for (const ComparisonRow& row : comparison.rows)
    if (row.kind == kind && row.name == name)
      return &row;
  return nullptr;
}

bool noneSlower(const Comparison& comparison, const std::string&) {
  return comparison.totals.slower == 0;
}

bool onlyTheScaledStepSlower(const Comparison& comparison, const std::string& step) {
  const ComparisonRow* scaled = findRow(comparison, SeriesKind::span, step);
  if (!scaled || scaled->verdict != Verdict::slower)
    return false;
  for (const ComparisonRow& row : comparison.rows)
    if (isStep(row) && &row != scaled && row.verdict != Verdict::same &&
        row.verdict != Verdict::unsure)
      return false;
  return true;
}

bool unsureWithMoreExecutionsNeeded(const Comparison& comparison, const std::string& step) {
  const ComparisonRow* scaled = findRow(comparison, SeriesKind::span, step);
  return scaled && scaled->verdict == Verdict::unsure && scaled->needed &&
         scaled->needed->base > scaled->base.count;
}

bool scaledStepSlower(const Comparison& comparison, const std::string& step) {
  const ComparisonRow* scaled = findRow(comparison, SeriesKind::span, step);
  return scaled && scaled->verdict == Verdict::slower;
}

bool durationAndEverySpanSlower(const Comparison& comparison, const std::string&) {
  for (const ComparisonRow& row : comparison.rows)
    if ((row.kind == SeriesKind::duration || row.kind == SeriesKind::span) &&
        row.verdict != Verdict::slower)
      return false;
  return true;
}

bool durationSlowerButNoStepChanged(const Comparison& comparison, const std::string&) {
  const ComparisonRow* duration = findRow(comparison, SeriesKind::duration, "duration");
  if (!duration || duration->verdict != Verdict::slower)
    return false;
  for (const ComparisonRow& row : comparison.rows)
    if (isStep(row) && (row.verdict == Verdict::slower || row.verdict == Verdict::faster))
      return false;
  return true;
}

TEST(Calibration, ComparisonsOfSeededPairsKeepTheirPromises) {
  struct Case {
    const char* what;
    SynthNoise noise;
    uint64_t executions;
    double stepScale; // of the scaled step in the new run
    uint32_t place;   // of the scaled step in the graph; 5 is about a quarter of the run
    double runScale;  // of the whole new run
    bool relative;
    uint32_t pairs;
    uint32_t atLeast; // pairs that must show what holds
    std::function<bool(const Comparison&, const std::string&)> holds;
  };
  const Case cases[] = {
      {"equal runs, mild noise", SynthNoise::mild, 100, 1, 0, 1, false, 40, 39, noneSlower},
      {"equal runs, heavy noise", SynthNoise::heavy, 100, 1, 0, 1, false, 40, 39, noneSlower},
      {"a step 10 % slower over 200 executions", SynthNoise::mild, 200, 1.10, 0, 1, false, 20, 19,
       onlyTheScaledStepSlower},
      {"a step 30 % slower over 5 noisy executions", SynthNoise::heavy, 5, 1.30, 0, 1, false, 10,
       10, unsureWithMoreExecutionsNeeded},
      {"a run 8 % slower", SynthNoise::mild, 200, 1, 0, 1.08, false, 10, 10,
       durationAndEverySpanSlower},
      {"a run 8 % slower, judged relative to it", SynthNoise::mild, 200, 1, 0, 1.08, true, 10, 10,
       durationSlowerButNoStepChanged},
      // The run's duration moves by about 8 %: no other step may look 8 % faster.
      {"a quarter of the run 30 % slower, judged relative", SynthNoise::mild, 200, 1.30, 5, 1, true,
       20, 19, onlyTheScaledStepSlower},
      {"a quarter of the run 30 % slower, judged relative, heavy noise", SynthNoise::heavy, 200,
       1.30, 5, 1, true, 20, 19, onlyTheScaledStepSlower},
      // Fully apart, 5 and 5 give p = 2/252 at best, which Holm over a dozen series cannot pass;
      // 10 and 10 give 2/184756.
      {"a step doubled over 5 executions", SynthNoise::mild, 5, 2, 5, 1, false, 10, 10,
       unsureWithMoreExecutionsNeeded},
      {"a step doubled over 10 executions", SynthNoise::mild, 10, 2, 5, 1, false, 10, 10,
       scaledStepSlower},
  };
  const testing::TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    SynthOptions model;
    model.graphs = 1;
    model.steps = 6;
    model.executions = c.executions;
    model.noise = c.noise;
    const std::string step = scaledStep(model, c.place);
    uint32_t held = 0;
    for (uint32_t pair = 0; pair < c.pairs; ++pair) {
      SynthOptions next = calibrationRun(model, pair, true);
      next.stepScales = {{step, c.stepScale}};
      next.runScale = c.runScale;
      std::ostringstream err;
      const std::optional<Comparison> comparison =
          compareSynthesizedRuns(calibrationRun(model, pair, false), next, {0.01, 5, 0, c.relative},
                                 dir.path().string(), err);
      ASSERT_TRUE(comparison) << err.str();
      held += c.holds(*comparison, step) ? 1 : 0;
    }
    EXPECT_GE(held, c.atLeast);
  }
}

} // namespace
} // namespace kvt::profiling
