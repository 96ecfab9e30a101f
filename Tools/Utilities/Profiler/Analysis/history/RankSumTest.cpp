// The exact distribution comes from the recurrence on the largest of all values: it is one of
// before's with probability a / (a + b), and then exceeds all b of after's.
#include "RankSumTest.h"

#include "RankableValues.h"
#include "comparison/MannWhitney.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace kvt::profiling {

namespace {

// The pairs (x of before, y of after) with x above y, ties counting half.
double pairsAbove(std::span<const double> before, std::span<const double> after) {
  double pairs = 0;
  for (const double x : before)
    for (const double y : after)
      pairs += x > y ? 1 : x == y ? 0.5 : 0;
  return pairs;
}

// P(U <= u) for sizes a and b when every order of the values is equally likely.
double lowerTail(size_t a, size_t b, double u) {
  // row[j][k]: P(U = k) for sizes (i, j), i the current row.
  std::vector<std::vector<double>> previous(b + 1);
  std::vector<std::vector<double>> row(b + 1);
  for (size_t i = 0; i <= a; ++i) {
    for (size_t j = 0; j <= b; ++j) {
      std::vector<double>& cell = row[j];
      cell.assign(i * j + 1, 0.0);
      if (i == 0 || j == 0) {
        cell[0] = 1;
        continue;
      }
      const double fromBefore = double(i) / double(i + j);
      for (size_t k = 0; k < previous[j].size(); ++k)
        cell[k + j] += fromBefore * previous[j][k];
      for (size_t k = 0; k < row[j - 1].size(); ++k)
        cell[k] += (1 - fromBefore) * row[j - 1][k];
    }
    std::swap(previous, row);
  }
  const std::vector<double>& distribution = previous[b];
  double tail = 0;
  for (size_t k = 0; k < distribution.size() && double(k) <= u; ++k)
    tail += distribution[k];
  return tail;
}

} // namespace

double rankSumPValue(std::span<const double> before, std::span<const double> after) {
  if (before.empty() || after.empty())
    return 1;
  if (before.size() + after.size() > maxExactRankSumRuns) {
    std::vector<double> both(before.begin(), before.end());
    both.insert(both.end(), after.begin(), after.end());
    const double scale = rankableScale(both);
    return mannWhitneyPValue(sortedRankable(before, scale), sortedRankable(after, scale));
  }
  const double pairs = double(before.size() * after.size());
  const double above = pairsAbove(before, after);
  const double nearer = std::floor(std::min(above, pairs - above));
  return std::min(1.0, 2 * lowerTail(before.size(), after.size(), nearer));
}

} // namespace kvt::profiling
