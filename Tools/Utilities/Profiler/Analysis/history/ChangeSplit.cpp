// Splits are placed where a step function fits the values best (least squares, from prefix
// sums); the rank-sum statistic alone would place them off the step, since among splits that
// separate the values completely it prefers the most balanced one. The rank test then tells at
// that split alone whether the change is real. A change that came back within the values (a
// regression fixed later) is a stretch of values unlike those around it: a single split cannot
// tell it, since each side holds some of it, so stretches are searched too.
#include "ChangeSplit.h"

#include "RankSumTest.h"

#include <algorithm>
#include <vector>

namespace kvt::profiling {

namespace {

// The share of the error rate given to single splits; stretches get the rest, so that a run of
// values without a change is split below p with probability at most p whichever search finds it.
constexpr double singleSplitShare = 0.8;

struct Candidate {
  size_t from = 0; // the first value of the stretch
  size_t to = 0;   // one past its last
  double reduction = 0;
};

// The squared error a stretch from..to removes against the values outside it:
// k (n - k) / n x (mean inside - mean outside)^2.
double reductionOf(const std::vector<double>& prefix, size_t from, size_t to) {
  const double n = double(prefix.size() - 1);
  const double inside = double(to - from);
  const double insideSum = prefix[to] - prefix[from];
  const double difference = insideSum / inside - (prefix.back() - insideSum) / (n - inside);
  return inside * (n - inside) / n * difference * difference;
}

} // namespace

std::optional<ChangeSplit> findChangeSplit(std::span<const double> values, size_t minSide) {
  const size_t n = values.size();
  if (minSide == 0 || n < 2 * minSide)
    return std::nullopt;
  // Centred on the first value, so that values near 2^64 keep their differences.
  std::vector<double> prefix(n + 1, 0.0);
  for (size_t i = 0; i < n; ++i)
    prefix[i + 1] = prefix[i] + (values[i] - values.front());
  Candidate single;
  for (size_t t = minSide; t + minSide <= n; ++t)
    if (const double reduction = reductionOf(prefix, t, n); reduction > single.reduction)
      single = {t, n, reduction};
  const double splits = double(n - 2 * minSide + 1);
  Candidate stretch;
  double stretches = 0;
  for (size_t from = minSide; from + 2 * minSide <= n; ++from) {
    for (size_t to = from + minSide; to + minSide <= n; ++to) {
      stretches += 1;
      if (const double reduction = reductionOf(prefix, from, to); reduction > stretch.reduction)
        stretch = {from, to, reduction};
    }
  }
  std::optional<ChangeSplit> best;
  if (single.reduction > 0) {
    const double p = rankSumPValue(values.first(single.from), values.subspan(single.from));
    best = ChangeSplit{single.from, std::nullopt, std::min(1.0, p * splits / singleSplitShare)};
  }
  if (stretch.reduction > 0) {
    std::vector<double> outside(values.begin(), values.begin() + ptrdiff_t(stretch.from));
    outside.insert(outside.end(), values.begin() + ptrdiff_t(stretch.to), values.end());
    const double p =
        rankSumPValue(outside, values.subspan(stretch.from, stretch.to - stretch.from));
    const double adjusted = std::min(1.0, p * stretches / (1 - singleSplitShare));
    if (!best || adjusted < best->pValue)
      best = ChangeSplit{stretch.from, stretch.to, adjusted};
  }
  return best;
}

} // namespace kvt::profiling
