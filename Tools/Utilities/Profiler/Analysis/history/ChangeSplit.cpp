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
  size_t from = 0;  // the first value of the stretch
  size_t to = 0;    // one past its last
  double score = 0; // n times the squared error the stretch removes; 0 when it removes none
};

// Scores stretches by the squared error they remove against the values outside them, times n:
// k (n - k) (mean inside - mean outside)^2 = (n S - k T)^2 / (k (n - k)), S the sum inside and
// T the total; the weights 1 / (k (n - k)) are kept per length, since the search of stretches
// scores n^2 / 2 of them.
class StretchScores {
public:
  explicit StretchScores(std::span<const double> values)
      : prefix(values.size() + 1, 0.0), weights(values.size() + 1, 0.0) {
    const size_t n = values.size();
    // Centred on the first value, so that values near 2^64 keep their differences.
    for (size_t i = 0; i < n; ++i)
      prefix[i + 1] = prefix[i] + (values[i] - values.front());
    for (size_t k = 1; k < n; ++k)
      weights[k] = 1 / (double(k) * double(n - k));
  }

  double score(size_t from, size_t to) const {
    const size_t k = to - from;
    const double n = double(prefix.size() - 1);
    const double excess = n * (prefix[to] - prefix[from]) - double(k) * prefix.back();
    return excess * excess * weights[k];
  }

private:
  std::vector<double> prefix;
  std::vector<double> weights;
};

} // namespace

std::optional<ChangeSplit> findChangeSplit(std::span<const double> values, size_t minSide) {
  const size_t n = values.size();
  if (minSide == 0 || n < 2 * minSide)
    return std::nullopt;
  const StretchScores scores(values);
  Candidate single;
  for (size_t t = minSide; t + minSide <= n; ++t)
    if (const double score = scores.score(t, n); score > single.score)
      single = {t, n, score};
  const double splits = double(n - 2 * minSide + 1);
  Candidate stretch;
  double stretches = 0;
  for (size_t from = minSide; from + 2 * minSide <= n; ++from) {
    for (size_t to = from + minSide; to + minSide <= n; ++to) {
      if (const double score = scores.score(from, to); score > stretch.score)
        stretch = {from, to, score};
    }
    stretches += double(n - minSide - (from + minSide) + 1);
  }
  std::optional<ChangeSplit> best;
  if (single.score > 0) {
    const double p = rankSumPValue(values.first(single.from), values.subspan(single.from));
    best = ChangeSplit{single.from, std::nullopt, std::min(1.0, p * splits / singleSplitShare)};
  }
  if (stretch.score > 0) {
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
