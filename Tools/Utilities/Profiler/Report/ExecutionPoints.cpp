// Thinning by the extremes of equal runs keeps what the eye looks for in an execution plot:
// spikes, steps and the bands of a bimodal series, not an average that hides them.
#include "ExecutionPoints.h"

#include <algorithm>

namespace kvt::profiling {

namespace {

// The positions kept of n values, ascending.
std::vector<size_t> pickExtremes(std::span<const uint64_t> values, size_t maxPoints) {
  const size_t n = values.size();
  std::vector<size_t> picked;
  if (n <= maxPoints) {
    for (size_t i = 0; i < n; ++i)
      picked.push_back(i);
    return picked;
  }
  const size_t runs = maxPoints / 2;
  for (size_t run = 0; run < runs; ++run) {
    const size_t begin = run * n / runs;
    const size_t end = (run + 1) * n / runs;
    size_t low = begin;
    size_t high = begin;
    for (size_t i = begin; i < end; ++i) {
      if (values[i] < values[low])
        low = i;
      if (values[i] > values[high])
        high = i;
    }
    picked.push_back(std::min(low, high));
    if (low != high)
      picked.push_back(std::max(low, high));
  }
  return picked;
}

} // namespace

ExecutionPoints thinExecutionPoints(std::span<const uint64_t> values, size_t maxPoints) {
  ExecutionPoints points;
  for (const size_t i : pickExtremes(values, maxPoints)) {
    points.index.push_back(i);
    points.value.push_back(values[i]);
  }
  return points;
}

ExecutionPoints thinExecutionPoints(const ExecutionPoints& points, size_t maxPoints) {
  ExecutionPoints thinner;
  for (const size_t i : pickExtremes(points.value, maxPoints)) {
    thinner.index.push_back(points.index[i]);
    thinner.value.push_back(points.value[i]);
  }
  return thinner;
}

} // namespace kvt::profiling
