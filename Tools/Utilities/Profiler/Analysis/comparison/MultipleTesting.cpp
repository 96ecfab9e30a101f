// Both adjustments walk the p-values in ascending order (ties in input order, so that equal
// inputs get equal outputs) and carry a running maximum or minimum, which keeps the adjusted
// values in the same order as the raw ones.
#include "MultipleTesting.h"

#include <algorithm>
#include <numeric>

namespace kvt::profiling {

namespace {

std::vector<size_t> ascendingOrder(std::span<const double> pValues) {
  std::vector<size_t> order(pValues.size());
  std::iota(order.begin(), order.end(), size_t(0));
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t a, size_t b) { return pValues[a] < pValues[b]; });
  return order;
}

} // namespace

std::vector<double> holmAdjusted(std::span<const double> pValues) {
  const std::vector<size_t> order = ascendingOrder(pValues);
  std::vector<double> adjusted(pValues.size());
  double running = 0;
  for (size_t rank = 0; rank < order.size(); ++rank) {
    const double remaining = double(order.size() - rank);
    running = std::max(running, std::min(1.0, remaining * pValues[order[rank]]));
    adjusted[order[rank]] = running;
  }
  return adjusted;
}

std::vector<double> benjaminiHochbergQValues(std::span<const double> pValues) {
  const std::vector<size_t> order = ascendingOrder(pValues);
  std::vector<double> q(pValues.size());
  double running = 1;
  for (size_t rank = order.size(); rank-- > 0;) {
    const double scaled = pValues[order[rank]] * double(order.size()) / double(rank + 1);
    running = std::min(running, std::min(1.0, scaled));
    q[order[rank]] = running;
  }
  return q;
}

} // namespace kvt::profiling
