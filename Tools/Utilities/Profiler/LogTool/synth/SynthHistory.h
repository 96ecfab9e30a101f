// Synthesises a history of runs of one model, each with fresh noise and a run-level factor of its
// own, and optionally a planted change: how history's false-alarm rate and power are measured.
#pragma once

#include "LogSynth.h"
#include "history/RunSeriesFigures.h"

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace kvt::profiling {

// What changes in which runs of a synthesised history.
struct HistoryPlan {
  uint64_t runs = 30;
  double runJitter = 0.015;          // each run's factor lies within 1 plus or minus this
  uint64_t changeFrom = 0;           // the first run the change applies to
  uint64_t changeUntil = UINT64_MAX; // one past the last; the change lasts to the end by default
  std::vector<StepScale> stepScales; // of the changed runs
  double runScale = 1;               // of the changed runs, on top of their own factor
};

// The runs of history number history of the model (noise seeds and factors no other history
// shares), each written into dir, reduced to its p50 figures and removed. None, with the reason
// on err, when a log cannot be written or read.
std::optional<std::vector<RunSeriesFigures>>
synthesizeHistory(const SynthOptions& model, const HistoryPlan& plan, uint64_t history,
                  const std::string& dir, std::ostream& err);

} // namespace kvt::profiling
