// Step shares from the mean spans.
#include "StepShares.h"

#include "SeriesSummary.h"

namespace kvt::profiling {

std::vector<std::optional<double>> computeStepShares(const GraphStatistics& graph) {
  std::vector<std::optional<double>> means;
  double total = 0;
  for (const StepSeries& step : graph.steps) {
    if (step.span.values.empty()) {
      means.emplace_back();
      continue;
    }
    const double mean = summarizeSeries(step.span.values, {}).mean;
    means.emplace_back(mean);
    total += mean;
  }
  for (std::optional<double>& share : means)
    if (share)
      share = total > 0 ? std::optional(*share / total * 100) : std::nullopt;
  return means;
}

} // namespace kvt::profiling
