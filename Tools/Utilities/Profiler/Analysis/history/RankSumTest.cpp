// The test reads only the order of the values and their ties, so each value becomes its place
// among the distinct values of both sides: whole numbers for the comparison's test, and values
// that differ in their last bit stay apart.
#include "RankSumTest.h"

#include "comparison/MannWhitney.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace kvt::profiling {

namespace {

std::vector<uint64_t> sortedPlaces(std::span<const double> values,
                                   const std::vector<double>& distinct) {
  std::vector<uint64_t> places(values.size());
  std::transform(values.begin(), values.end(), places.begin(), [&distinct](double value) {
    return uint64_t(std::lower_bound(distinct.begin(), distinct.end(), value) - distinct.begin());
  });
  std::sort(places.begin(), places.end());
  return places;
}

} // namespace

double rankSumPValue(std::span<const double> before, std::span<const double> after) {
  std::vector<double> distinct(before.begin(), before.end());
  distinct.insert(distinct.end(), after.begin(), after.end());
  std::sort(distinct.begin(), distinct.end());
  distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
  return mannWhitneyPValue(sortedPlaces(before, distinct), sortedPlaces(after, distinct),
                           maxExactRankSumRuns);
}

} // namespace kvt::profiling
