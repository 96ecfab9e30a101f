// Each run's factor comes from a hash of its history and run, so any history can be remade
// alone, in any order.
#include "SynthHistory.h"

#include "statistics/StatisticsPass.h"

#include <filesystem>
#include <sstream>

namespace kvt::profiling {

namespace {

// splitmix64's finaliser: well-spread bits from a counter.
uint64_t mixBits(uint64_t value) {
  value += 0x9e3779b97f4a7c15ULL;
  value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9ULL;
  value = (value ^ (value >> 27)) * 0x94d049bb133111ebULL;
  return value ^ (value >> 31);
}

// A number in [-1, 1) from history and run.
double signedUnit(uint64_t history, uint64_t run) {
  const uint64_t bits = mixBits(mixBits(history) ^ run) >> 11;
  return double(bits) / double(uint64_t(1) << 52) - 1;
}

} // namespace

std::optional<std::vector<RunSeriesFigures>>
synthesizeHistory(const SynthOptions& model, const HistoryPlan& plan, uint64_t history,
                  const std::string& dir, std::ostream& err) {
  std::vector<RunSeriesFigures> runs;
  const std::string path = (std::filesystem::path(dir) / "history-run.log").string();
  for (uint64_t run = 0; run < plan.runs; ++run) {
    SynthOptions options = model;
    options.outputPath = path;
    options.noiseSeed = history * plan.runs + run;
    options.runScale = 1 + plan.runJitter * signedUnit(history, run);
    if (run >= plan.changeFrom && run < plan.changeUntil) {
      options.stepScales = plan.stepScales;
      options.runScale *= plan.runScale;
    }
    std::ostringstream discarded;
    RunStatistics statistics;
    const std::optional<std::string> unwritten = synthLog(options, discarded, false);
    if (unwritten)
      err << *unwritten << '\n';
    const bool read = !unwritten && readRunStatistics(path, {}, statistics);
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    if (!read)
      return std::nullopt;
    runs.push_back(figuresOfRun(statistics, HistoryFigure::p50, "run " + std::to_string(run)));
  }
  return runs;
}

} // namespace kvt::profiling
