// Medians of logs, not of ratios, so that a run 10 % slower and one 10 % faster lie as far from
// the typical run; the median over the spans, and who counts, is the comparison's step factor.
#include "RunWideShifts.h"

#include "comparison/StepFactor.h"

#include <algorithm>
#include <cmath>

namespace kvt::profiling {

namespace {

std::optional<double> medianOf(std::vector<double> values) {
  if (values.empty())
    return std::nullopt;
  const size_t middle = values.size() / 2;
  std::nth_element(values.begin(), values.begin() + ptrdiff_t(middle), values.end());
  if (values.size() % 2)
    return values[middle];
  const double upper = values[middle];
  return (*std::max_element(values.begin(), values.begin() + ptrdiff_t(middle)) + upper) / 2;
}

} // namespace

RunWideShifts::RunWideShifts(const std::vector<const RunSeriesValues*>& spans, size_t runs) {
  for (const RunSeriesValues* span : spans) {
    std::vector<double> positive;
    for (const std::optional<double>& value : *span)
      if (value && *value > 0)
        positive.push_back(*value);
    const std::optional<double> median = medianOf(positive);
    std::vector<std::optional<double>>& shifts = logShifts.emplace_back(runs);
    for (size_t run = 0; run < runs && run < span->size(); ++run)
      if (median && (*span)[run] && *(*span)[run] > 0)
        shifts[run] = std::log(*(*span)[run] / *median);
  }
}

std::optional<double> RunWideShifts::factor(size_t run, std::optional<size_t> leftOut) const {
  std::vector<double> shifts;
  std::optional<double> own;
  for (size_t span = 0; span < logShifts.size(); ++span) {
    if (!logShifts[span][run])
      continue;
    shifts.push_back(*logShifts[span][run]);
    if (span == leftOut)
      own = logShifts[span][run];
  }
  const StepFactor stepFactor(std::move(shifts));
  if (!stepFactor.exists())
    return std::nullopt;
  return stepFactor.ratioWithout(own);
}

} // namespace kvt::profiling
