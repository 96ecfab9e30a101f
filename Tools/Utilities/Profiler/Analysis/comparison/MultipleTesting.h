// Adjustments of p-values for the number of hypotheses tested at once, so that a comparison of
// hundreds of series does not find changes by chance.
#pragma once

#include <span>
#include <vector>

namespace kvt::profiling {

// Holm's step-down adjustment: a hypothesis whose adjusted value is below alpha is rejected with
// a family-wise error rate of at most alpha, whatever the dependence between the tests. Example:
// {0.01, 0.04, 0.03} gives {0.03, 0.06, 0.06}.
std::vector<double> holmAdjusted(std::span<const double> pValues);

// The Benjamini-Hochberg q-values: rejecting those below q keeps the expected share of false
// discoveries at most q for independent tests. Example: {0.01, 0.04, 0.03} gives
// {0.03, 0.04, 0.04}.
std::vector<double> benjaminiHochbergQValues(std::span<const double> pValues);

} // namespace kvt::profiling
