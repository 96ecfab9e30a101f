// The ranges of the comparison's options: alpha below 0.5 keeps the (1 - 2 alpha) interval an
// interval; a negative margin would call every equal pair changed.
#include "ComparisonOptions.h"

#include <algorithm>

namespace kvt::profiling {

namespace {

constexpr ComparisonOption rangedOptions[] = {
    ComparisonOption::alpha, ComparisonOption::thresholdPercent, ComparisonOption::minChangeUnits};

} // namespace

double marginUnits(double baseMedianUnits, const ComparisonOptions& options) {
  return std::max(options.thresholdPercent / 100 * baseMedianUnits, options.minChangeUnits);
}

std::string_view describeRange(ComparisonOption option) {
  switch (option) {
  case ComparisonOption::alpha:
    return "a probability above 0 and below 0.5";
  case ComparisonOption::thresholdPercent:
    return "a percentage of 0 or more";
  case ComparisonOption::minChangeUnits:
    return "a number of units of 0 or more";
  }
  return {};
}

bool isInRange(ComparisonOption option, double value) {
  if (option == ComparisonOption::alpha)
    return value > 0 && value < 0.5;
  return value >= 0; // false for NaN
}

double readOption(const ComparisonOptions& options, ComparisonOption option) {
  switch (option) {
  case ComparisonOption::alpha:
    return options.alpha;
  case ComparisonOption::thresholdPercent:
    return options.thresholdPercent;
  case ComparisonOption::minChangeUnits:
    return options.minChangeUnits;
  }
  return 0;
}

std::optional<ComparisonOption> findOptionOutOfRange(const ComparisonOptions& options) {
  for (const ComparisonOption option : rangedOptions)
    if (!isInRange(option, readOption(options, option)))
      return option;
  return std::nullopt;
}

} // namespace kvt::profiling
