// Each cell compares its own pairs, with noise seeds no other pair shares; the model (names and
// base values) is the same throughout, as it would be for one model run twice.
#include "Calibration.h"

#include "synth/SynthComparison.h"
#include "synth/SynthSteps.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <optional>

namespace kvt::profiling {

namespace {

constexpr uint32_t calibrationGraphs = 2;
constexpr uint32_t calibrationSteps = 32; // with sub-events: about 130 series a comparison
constexpr double calibrationAlpha = 0.01;
constexpr double calibrationThresholdPercent = 5;
constexpr uint32_t dominantSteps = 6; // the step with the largest share is about a quarter
constexpr uint64_t dominantExecutions = 200;
constexpr double dominantScale = 1.30;

struct Tally {
  uint32_t hits = 0;
  uint32_t pairs = 0;
};

// The upper end of the 95 % Wilson score interval of a rate: how high it may be, given the pairs.
double upperBound(const Tally& tally) {
  const double z = 1.959964;
  const double n = double(tally.pairs);
  const double p = double(tally.hits) / n;
  const double centre = p + z * z / (2 * n);
  const double spread = z * std::sqrt(p * (1 - p) / n + z * z / (4 * n * n));
  return (centre + spread) / (1 + z * z / n);
}

std::string formatRate(const Tally& tally, bool withBound) {
  char text[64];
  if (withBound)
    std::snprintf(text, sizeof text, "%u/%u (<= %.1f %%)", tally.hits, tally.pairs,
                  100 * upperBound(tally));
  else
    std::snprintf(text, sizeof text, "%u/%u (%.0f %%)", tally.hits, tally.pairs,
                  100.0 * tally.hits / tally.pairs);
  return text;
}

// Pairs of the model whose new run has the first step of the first graph times stepScale; a hit
// is a pair with some slower row (stepScale 1) or with that step's spans slower.
bool tallyPairs(const SynthOptions& model, double stepScale, uint32_t pairs, const std::string& dir,
                Tally& tally) {
  const std::string step(StepName(FigureSource(model.seed), 0, 0).view());
  for (uint32_t pair = 0; pair < pairs; ++pair) {
    SynthOptions next = calibrationRun(model, pair, true);
    if (stepScale != 1)
      next.stepScales = {{step, stepScale}};
    const std::optional<Comparison> comparison = compareSynthesizedRuns(
        calibrationRun(model, pair, false), next,
        {calibrationAlpha, calibrationThresholdPercent, 0, false}, dir, std::cerr);
    if (!comparison)
      return false;
    bool hit = comparison->totals.slower > 0;
    if (stepScale != 1) {
      hit = false;
      for (const ComparisonRow& row : comparison->rows)
        if (row.graph == "graph_0" && row.kind == SeriesKind::span && row.name == step)
          hit = row.verdict == Verdict::slower;
    }
    tally.hits += hit ? 1 : 0;
    tally.pairs += 1;
  }
  return true;
}

// The step of graph_0 whose spans have the largest base median, from a pair with no change.
std::optional<std::string> findDominantStep(const SynthOptions& model, const std::string& dir) {
  const std::optional<Comparison> comparison = compareSynthesizedRuns(
      calibrationRun(model, 0, false), calibrationRun(model, 0, true),
      {calibrationAlpha, calibrationThresholdPercent, 0, false}, dir, std::cerr);
  if (!comparison)
    return std::nullopt;
  const ComparisonRow* dominant = nullptr;
  for (const ComparisonRow& row : comparison->rows)
    if (row.graph == "graph_0" && row.kind == SeriesKind::span &&
        (!dominant || row.base.p50 > dominant->base.p50))
      dominant = &row;
  return dominant ? std::optional(dominant->name) : std::nullopt;
}

// Pairs whose new run has the dominant step 30 % slower, judged relative: hits are pairs where
// that step is slower, changed those where another step's span or wait is slower or faster.
bool tallyDominantPairs(const SynthOptions& model, const std::string& step, uint32_t pairs,
                        const std::string& dir, Tally& hits, Tally& changed) {
  for (uint32_t pair = 0; pair < pairs; ++pair) {
    SynthOptions next = calibrationRun(model, pair, true);
    next.stepScales = {{step, dominantScale}};
    const std::optional<Comparison> comparison = compareSynthesizedRuns(
        calibrationRun(model, pair, false), next,
        {calibrationAlpha, calibrationThresholdPercent, 0, true}, dir, std::cerr);
    if (!comparison)
      return false;
    bool hit = false;
    bool otherChanged = false;
    for (const ComparisonRow& row : comparison->rows) {
      if (row.kind != SeriesKind::span && row.kind != SeriesKind::wait)
        continue;
      const bool moved = row.verdict == Verdict::slower || row.verdict == Verdict::faster;
      if (row.kind == SeriesKind::span && row.name == step)
        hit = row.verdict == Verdict::slower;
      else
        otherChanged = otherChanged || moved;
    }
    hits.hits += hit ? 1 : 0;
    changed.hits += otherChanged ? 1 : 0;
    ++hits.pairs;
    ++changed.pairs;
  }
  return true;
}

bool runDominantStepRows(uint32_t pairs, const std::string& dir) {
  std::printf("\none step of %u, the one with the largest share (about a quarter of the run), "
              "%.0f %% slower,\njudged with --relative; step slower: pairs where it is slower; "
              "others changed: pairs where\nanother step's span or wait is slower or faster\n",
              dominantSteps, (dominantScale - 1) * 100);
  std::printf("%-12s %10s %16s %22s %9s\n", "noise", "executions", "step slower", "others changed",
              "seconds");
  for (const SynthNoise noise : {SynthNoise::mild, SynthNoise::heavy}) {
    SynthOptions model;
    model.graphs = 1;
    model.steps = dominantSteps;
    model.executions = dominantExecutions;
    model.noise = noise;
    const auto start = std::chrono::steady_clock::now();
    const std::optional<std::string> step = findDominantStep(model, dir);
    Tally hits;
    Tally changed;
    if (!step || !tallyDominantPairs(model, *step, pairs, dir, hits, changed))
      return false;
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%-12s %10llu %16s %22s %9.1f\n", noise == SynthNoise::mild ? "mild" : "heavy",
                static_cast<unsigned long long>(dominantExecutions),
                formatRate(hits, false).c_str(), formatRate(changed, true).c_str(), seconds);
    std::fflush(stdout);
  }
  return true;
}

} // namespace

bool runCalibration(const CalibrationOptions& options, const std::string& dir) {
  std::printf("\ncalibration: compare (alpha %.2f, threshold %.0f %%) on %u pairs of synthesised "
              "runs per cell,\n%u graphs x %u steps with sub-events; false alarms: pairs of one "
              "model with fresh noise that\nexit 3 (with the 95 %% upper bound of the rate); "
              "power: pairs whose new run has one step\n10 %% or 5 %% slower where that step is "
              "slower; seconds: synthesis, both passes and compare\n",
              calibrationAlpha, calibrationThresholdPercent, options.pairs, calibrationGraphs,
              calibrationSteps);
  std::printf("%-12s %10s %22s %16s %16s %9s\n", "noise", "executions", "false alarms",
              "power 10 %", "power 5 %", "seconds");
  for (const SynthNoise noise : {SynthNoise::mild, SynthNoise::heavy}) {
    for (const uint64_t executions : options.executions) {
      SynthOptions model;
      model.graphs = calibrationGraphs;
      model.steps = calibrationSteps;
      model.executions = executions;
      model.noise = noise;
      Tally equal;
      Tally tenPercent;
      Tally fivePercent;
      const auto start = std::chrono::steady_clock::now();
      if (!tallyPairs(model, 1, options.pairs, dir, equal) ||
          !tallyPairs(model, 1.10, options.pairs, dir, tenPercent) ||
          !tallyPairs(model, 1.05, options.pairs, dir, fivePercent))
        return false;
      const double seconds =
          std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
      std::printf(
          "%-12s %10llu %22s %16s %16s %9.1f\n", noise == SynthNoise::mild ? "mild" : "heavy",
          static_cast<unsigned long long>(executions), formatRate(equal, true).c_str(),
          formatRate(tenPercent, false).c_str(), formatRate(fivePercent, false).c_str(), seconds);
      std::fflush(stdout);
    }
  }
  return runDominantStepRows(options.pairs, dir);
}

} // namespace kvt::profiling
