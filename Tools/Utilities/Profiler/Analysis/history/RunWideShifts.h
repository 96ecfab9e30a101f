// How much slower each run of a graph was as a whole: the median over its step spans of each
// span's log shift, robust to a few steps that changed on their own.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace kvt::profiling {

// The values of one series per run, none where the run has none.
using RunSeriesValues = std::vector<std::optional<double>>;

class RunWideShifts {
public:
  // spans: the graph's step spans over runs runs. A span's log shift in a run is the log of its
  // value over its median across the runs; values of 0 and runs without a value have none.
  RunWideShifts(const std::vector<const RunSeriesValues*>& spans, size_t runs);

  // The run's factor: StepFactor's over the log shifts of the spans in the run, without leftOut's
  // (an index into spans), so that a series is never judged against a factor it moved itself.
  // Example: shifts of 1.08, 1.08, 1.08 and 1.5 in a run give 1.08, and 1.08 again without the
  // fourth. None when fewer than StepFactor::minSeries spans have a shift there.
  std::optional<double> factor(size_t run, std::optional<size_t> leftOut = std::nullopt) const;

private:
  std::vector<std::vector<std::optional<double>>> logShifts; // [span][run]
};

} // namespace kvt::profiling
