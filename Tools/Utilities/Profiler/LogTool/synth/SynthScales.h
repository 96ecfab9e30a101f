// Factors that make a synthesised run slower or faster than its model: one for every duration of
// the run, and one for each step named on the command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvt::profiling {

// A factor may not exceed this, which keeps scaled durations far from overflowing the clock.
inline constexpr double maxScaleFactor = 1000;

// The spans of the steps called name, as the log names them ("Conv2D_3"), times factor.
struct StepScale {
  std::string name;
  double factor = 1;
};

// A factor in plain decimal above 0 and up to maxScaleFactor: "1.10" -> 1.1; "0", "-1", "1.1x",
// "inf" -> nothing.
std::optional<double> parseScaleFactor(std::string_view text);

// "Conv2D_3=1.10" -> {"Conv2D_3", 1.1}; nothing without '=', with an empty name or a factor that
// parseScaleFactor refuses.
std::optional<StepScale> parseStepScale(std::string_view text);

// The factor of the step called name: the last scale that names it, 1 when none does.
double findStepFactor(const std::vector<StepScale>& scales, std::string_view name);

// A duration times factor, rounded to the nearest microsecond; a duration above 0 stays at least
// 1 us, and a factor of 1 gives the duration back unchanged.
uint64_t scaleUs(uint64_t durationUs, double factor);

} // namespace kvt::profiling
