// Scale factors parsed with from_chars, so that the locale never changes what "1.10" means.
#include "SynthScales.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kvt::profiling {

std::optional<double> parseScaleFactor(std::string_view text) {
  double factor = 0;
  const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), factor);
  // The comparisons also refuse a NaN.
  if (status != std::errc() || end != text.data() + text.size() || !(factor > 0) ||
      !(factor <= maxScaleFactor))
    return std::nullopt;
  return factor;
}

std::optional<StepScale> parseStepScale(std::string_view text) {
  const size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0)
    return std::nullopt;
  const std::optional<double> factor = parseScaleFactor(text.substr(equals + 1));
  if (!factor)
    return std::nullopt;
  return StepScale{std::string(text.substr(0, equals)), *factor};
}

double findStepFactor(const std::vector<StepScale>& scales, std::string_view name) {
  const auto last = std::find_if(scales.rbegin(), scales.rend(),
                                 [name](const StepScale& scale) { return scale.name == name; });
  return last == scales.rend() ? 1 : last->factor;
}

uint64_t scaleUs(uint64_t durationUs, double factor) {
  // Unscaled runs, the usual case, skip the rounding on every step.
  if (durationUs == 0 || factor == 1)
    return durationUs;
  return std::max<uint64_t>(1, uint64_t(std::round(double(durationUs) * factor)));
}

} // namespace kvt::profiling
