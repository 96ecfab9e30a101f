// Each step's share of a graph's time: its mean span over the sum of all steps' mean spans.
#pragma once

#include "RunStatistics.h"

#include <optional>
#include <vector>

namespace kvt::profiling {

// In percent, by step position; none for a step without counted values, and for every step
// when the mean spans sum to 0.
std::vector<std::optional<double>> computeStepShares(const GraphStatistics& graph);

} // namespace kvt::profiling
