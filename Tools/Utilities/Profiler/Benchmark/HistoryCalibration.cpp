// Every cell synthesises its own histories (noise seeds and run factors no other history
// shares) of one model; the timing reads back documents that `stats --format json` would write.
#include "HistoryCalibration.h"

#include "history/HistoryInputs.h"
#include "history/RunHistory.h"
#include "reports/HistoryReport.h"
#include "reports/StatsReport.h"
#include "statistics/StatisticsPass.h"
#include "synth/SynthHistory.h"
#include "synth/SynthSteps.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <thread>

namespace kvt::profiling {

namespace {

constexpr uint32_t historyGraphs = 2;
constexpr uint32_t historySteps = 32; // with sub-events: about 130 series a run
constexpr uint64_t historyExecutions = 50;
constexpr uint64_t historyRuns = 30;
constexpr uint64_t changedRun = 20; // the first run of a planted change

struct Cell {
  const char* name;
  double stepScale;
  double thresholdPercent;
};

struct CellTally {
  uint32_t histories = 0;
  uint32_t historiesWithChange = 0; // any change of a series or a run factor
  uint64_t falseChanges = 0;        // changes of series, in histories without a planted one
  uint64_t seriesRuns = 0;          // series x runs looked at
  uint32_t detected = 0;            // the planted step slower within one run
  int64_t delaySum = 0;             // run found minus run planted, over the detected
};

SynthOptions historyModel() {
  SynthOptions model;
  model.graphs = historyGraphs;
  model.steps = historySteps;
  model.executions = historyExecutions;
  return model;
}

void tally(const History& history, const std::string& step, bool planted, CellTally& cell) {
  ++cell.histories;
  cell.historiesWithChange += history.totals.changes + history.totals.runWide > 0 ? 1 : 0;
  for (const HistorySeries& series : history.series) {
    cell.seriesRuns += history.runs.size();
    const bool isPlanted = planted && series.key.graph == "graph_0" &&
                           series.key.kind == SeriesKind::span && series.key.name == step;
    for (const HistoryChange& change : series.changes) {
      if (!isPlanted) {
        ++cell.falseChanges;
        continue;
      }
      const int64_t delay = int64_t(change.run) - int64_t(changedRun);
      if (change.verdict == Verdict::slower && delay >= -1 && delay <= 1) {
        ++cell.detected;
        cell.delaySum += delay;
      }
    }
  }
}

std::string formatShare(uint64_t hits, uint64_t total) {
  char text[64];
  std::snprintf(text, sizeof text, "%llu/%llu (%.1f %%)", static_cast<unsigned long long>(hits),
                static_cast<unsigned long long>(total),
                total ? 100.0 * double(hits) / double(total) : 0);
  return text;
}

bool runCells(const HistoryCalibrationOptions& options, const std::string& dir) {
  const SynthOptions model = historyModel();
  const std::string step(StepName(FigureSource(model.seed), 0, 0).view());
  const Cell cells[] = {{"equal runs", 1, 5},
                        {"step +10 % from run 20", 1.10, 5},
                        {"step +5 % from run 20", 1.05, 2}};
  std::printf(
      "\nhistory: %u histories a cell of %llu runs of one model, %u graphs x %u steps with "
      "sub-events\n(about 130 series), %llu executions a run, each run with fresh noise and "
      "a factor within\n1.5 %%; alpha 0.01, threshold 5 %% (2 %% for the 5 %% change); "
      "detected: the changed step\nslower within one run of run 20; delay: the run found "
      "minus 20, mean over the detected\n",
      options.histories, static_cast<unsigned long long>(historyRuns), historyGraphs, historySteps,
      static_cast<unsigned long long>(historyExecutions));
  std::printf("%-24s %22s %26s %16s %7s %9s\n", "cell", "false alarms, histories",
              "false alarms, series-runs", "detected", "delay", "seconds");
  uint64_t seed = 0;
  for (const Cell& cell : cells) {
    HistoryPlan plan;
    plan.runs = historyRuns;
    plan.changeFrom = changedRun;
    plan.stepScales = {{step, cell.stepScale}};
    HistoryOptions judged;
    judged.comparison.thresholdPercent = cell.thresholdPercent;
    CellTally tallied;
    const auto start = std::chrono::steady_clock::now();
    for (uint32_t history = 0; history < options.histories; ++history) {
      std::optional<std::vector<RunSeriesFigures>> runs =
          synthesizeHistory(model, plan, seed++, dir, std::cerr);
      if (!runs)
        return false;
      tally(buildHistory(std::move(*runs), judged), step, cell.stepScale != 1, tallied);
    }
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    char delay[32] = "-";
    if (tallied.detected)
      std::snprintf(delay, sizeof delay, "%+.2f", double(tallied.delaySum) / tallied.detected);
    const bool planted = cell.stepScale != 1;
    std::printf("%-24s %22s %26s %16s %7s %9.1f\n", cell.name,
                planted ? "-" : formatShare(tallied.historiesWithChange, tallied.histories).c_str(),
                planted ? "-" : formatShare(tallied.falseChanges, tallied.seriesRuns).c_str(),
                planted ? formatShare(tallied.detected, tallied.histories).c_str() : "-", delay,
                seconds);
    std::fflush(stdout);
  }
  return true;
}

// Writes timedRuns stats documents of synthesised runs into dir and times history over them:
// reading, the change points and the JSON written (discarded).
bool timeStatsDocuments(const HistoryCalibrationOptions& options, const std::string& dir) {
  SynthOptions model = historyModel();
  model.executions = 5;
  std::vector<std::string> paths;
  const std::string logPath = (std::filesystem::path(dir) / "timed.log").string();
  for (uint32_t run = 0; run < options.timedRuns; ++run) {
    SynthOptions timed = model;
    timed.outputPath = logPath;
    timed.noiseSeed = 1000000 + run;
    std::ostringstream discarded;
    RunStatistics statistics;
    if (const std::optional<std::string> unwritten = synthLog(timed, discarded, false)) {
      std::cerr << *unwritten << '\n';
      return false;
    }
    if (!readRunStatistics(logPath, {}, statistics))
      return false;
    paths.push_back(
        (std::filesystem::path(dir) / ("run-" + std::to_string(run) + ".json")).string());
    std::ofstream document(paths.back());
    writeStatsJson(document, statistics, logPath, 0);
    if (!document.flush())
      return false;
  }
  std::filesystem::remove(logPath);
  const auto start = std::chrono::steady_clock::now();
  std::vector<RunSeriesFigures> runs;
  const HistoryReadOptions reading{HistoryFigure::p50, 0,
                                   std::max(1u, std::thread::hardware_concurrency())};
  if (const auto error = readHistoryRuns(paths, reading, runs)) {
    std::fprintf(stderr, "kvt-profile-bench: %s: %s\n", error->path.c_str(),
                 error->problem.c_str());
    return false;
  }
  const size_t series = runs.empty() ? 0 : runs.front().series.size();
  const auto read = std::chrono::steady_clock::now();
  const History history = buildHistory(std::move(runs), {});
  std::ostringstream json;
  writeHistoryJson(json, history, {});
  const auto done = std::chrono::steady_clock::now();
  for (const std::string& path : paths)
    std::filesystem::remove(path);
  std::printf("history of %u stats documents of %zu series: %.3f s (reading %.3f s, change points "
              "and JSON %.3f s)\n",
              options.timedRuns, series, std::chrono::duration<double>(done - start).count(),
              std::chrono::duration<double>(read - start).count(),
              std::chrono::duration<double>(done - read).count());
  return true;
}

} // namespace

bool runHistoryCalibration(const HistoryCalibrationOptions& options, const std::string& dir) {
  return runCells(options, dir) && timeStatsDocuments(options, dir);
}

} // namespace kvt::profiling
