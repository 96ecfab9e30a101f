// Leaving one series out of a sorted list shifts the places above it down by one, so the median
// of the others is read from the same sorted list without copying it.
#include "StepFactor.h"

#include "statistics/SeriesSummary.h"

#include <algorithm>
#include <cmath>

namespace kvt::profiling {

std::optional<double> logShift(std::span<const uint64_t> sortedBase,
                               std::span<const uint64_t> sortedNew) {
  if (sortedBase.empty() || sortedNew.empty())
    return std::nullopt;
  const uint64_t base = nearestRank(sortedBase, 50);
  const uint64_t next = nearestRank(sortedNew, 50);
  if (base == 0 || next == 0)
    return std::nullopt;
  return std::log(double(next)) - std::log(double(base));
}

StepFactor::StepFactor(std::vector<double> logShifts) : sorted(std::move(logShifts)) {
  std::sort(sorted.begin(), sorted.end());
}

double StepFactor::ratioWithout(std::optional<double> own) const {
  if (!exists())
    return 1;
  const size_t left = own ? sorted.size() - 1 : sorted.size();
  const size_t skipped =
      own ? size_t(std::lower_bound(sorted.begin(), sorted.end(), *own) - sorted.begin())
          : sorted.size();
  auto at = [&](size_t place) { return sorted[place < skipped ? place : place + 1]; };
  const double median = left % 2 ? at(left / 2) : (at(left / 2 - 1) + at(left / 2)) / 2;
  return std::exp(median);
}

} // namespace kvt::profiling
