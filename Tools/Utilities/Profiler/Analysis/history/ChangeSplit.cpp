// One sort gives every value's rank; the rank sums of all prefixes then follow in one pass, so a
// scan of n runs costs n log n, and the exact test runs only at the split chosen.
#include "ChangeSplit.h"

#include "RankSumTest.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace kvt::profiling {

namespace {

// Each value's rank among values from 1, tied values sharing their mean rank; tieTerm receives
// the sum of t^3 - t over the groups of t tied values.
std::vector<double> midRanks(std::span<const double> values, double& tieTerm) {
  std::vector<size_t> order(values.size());
  std::iota(order.begin(), order.end(), size_t(0));
  std::sort(order.begin(), order.end(), [&values](size_t a, size_t b) {
    return values[a] < values[b] || (values[a] == values[b] && a < b);
  });
  std::vector<double> ranks(values.size());
  tieTerm = 0;
  for (size_t start = 0; start < order.size();) {
    size_t end = start + 1;
    while (end < order.size() && values[order[end]] == values[order[start]])
      ++end;
    const double tied = double(end - start);
    tieTerm += tied * tied * tied - tied;
    for (size_t i = start; i < end; ++i)
      ranks[order[i]] = (double(start + end) + 1) / 2;
    start = end;
  }
  return ranks;
}

} // namespace

std::optional<ChangeSplit> findChangeSplit(std::span<const double> values, size_t minSide) {
  const size_t n = values.size();
  if (minSide == 0 || n < 2 * minSide)
    return std::nullopt;
  double tieTerm = 0;
  const std::vector<double> ranks = midRanks(values, tieTerm);
  const double count = double(n);
  const double tieShare = tieTerm / (count * (count - 1));
  double rankSum = 0;
  for (size_t t = 0; t < minSide; ++t)
    rankSum += ranks[t];
  std::optional<size_t> best;
  double bestDistance = 0;
  for (size_t t = minSide; t + minSide <= n; rankSum += ranks[t], ++t) {
    const double before = double(t);
    const double pairs = before * (count - before);
    const double variance = pairs / 12 * (count + 1 - tieShare);
    if (variance <= 0)
      continue;
    const double statistic = rankSum - before * (before + 1) / 2;
    const double distance = std::abs(statistic - pairs / 2) / std::sqrt(variance);
    if (distance > bestDistance) {
      bestDistance = distance;
      best = t;
    }
  }
  if (!best)
    return std::nullopt; // no split has sides that differ
  const double splits = double(n - 2 * minSide + 1);
  const double p = rankSumPValue(values.first(*best), values.subspan(*best));
  return ChangeSplit{*best, std::min(1.0, p * splits)};
}

} // namespace kvt::profiling
