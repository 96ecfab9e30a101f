// Bins on a logarithmic axis, so that a long tail does not squeeze the body of a distribution into
// one bar; a narrow range of whole numbers gets whole-number bins instead.
#include "PageSeries.h"

#include <algorithm>
#include <cmath>

namespace kvt::profiling {

Histogram binValues(std::span<const uint64_t> sorted, uint64_t low, uint64_t high) {
  const uint64_t range = high - low;
  if (range < low || range < 2 * histogramBins) {
    const uint64_t width = range / histogramBins + 1;
    Histogram histogram{false, low, 0, width, std::vector<uint64_t>(range / width + 1, 0)};
    for (const uint64_t value : sorted)
      ++histogram.counts[(value - low) / width];
    return histogram;
  }
  Histogram histogram{true, low, high, 0, std::vector<uint64_t>(histogramBins, 0)};
  const double logLow = std::log(double(std::max<uint64_t>(low, 1)));
  const double logWidth = std::log(double(high)) - logLow;
  for (const uint64_t value : sorted) {
    const double position = (std::log(double(std::max<uint64_t>(value, 1))) - logLow) / logWidth;
    const double bin = std::floor(position * double(histogramBins));
    ++histogram.counts[size_t(std::clamp(bin, 0.0, double(histogramBins - 1)))];
  }
  return histogram;
}

PageSeries figurePageSeries(const SeriesRef& ref) {
  const std::vector<uint64_t>& sorted = ref.series->values;
  PageSeries figures;
  figures.kind = ref.kind;
  figures.name = std::string(ref.name);
  if (ref.parent)
    figures.parent = std::string(*ref.parent);
  figures.occurrence = ref.occurrence;
  figures.summary = summarizeSeries(sorted, ref.series->first);
  if (sorted.empty())
    return figures;
  figures.box = BoxFigures{nearestRank(sorted, 1), nearestRank(sorted, 25), nearestRank(sorted, 50),
                           nearestRank(sorted, 75), nearestRank(sorted, 99)};
  figures.histogram = binValues(sorted, sorted.front(), sorted.back());
  return figures;
}

} // namespace kvt::profiling
