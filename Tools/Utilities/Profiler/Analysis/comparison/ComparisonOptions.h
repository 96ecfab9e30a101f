// The options of a comparison of two runs, with their defaults and the one check of their ranges
// that the command line and the Python module both call.
#pragma once

#include <optional>
#include <string_view>

namespace kvt::profiling {

struct ComparisonOptions {
  double alpha = 0.01;         // the family-wise false-alarm rate of a slower verdict
  double thresholdPercent = 5; // a change within plus or minus this much of the base median is none
  double minChangeUnits = 0;   // a change of at most this many log units is none
  bool relative = false;       // judge steps and back-end records net of each graph's run shift
};

// The change below which a series counts as unchanged, in log units: the threshold's share of
// its base median or minChangeUnits, whichever is larger. Example: 5 % of a median of 200 and a
// minChangeUnits of 4 give 10.
double marginUnits(double baseMedianUnits, const ComparisonOptions& options);

// The options that have a range.
enum class ComparisonOption { alpha, thresholdPercent, minChangeUnits };

// What a value of the option must be, as a phrase: "a probability above 0 and below 0.5".
std::string_view describeRange(ComparisonOption option);

bool isInRange(ComparisonOption option, double value);

// The option's value in options.
double readOption(const ComparisonOptions& options, ComparisonOption option);

// The first option of options out of its range, none when every one is in range (NaN never is).
std::optional<ComparisonOption> findOptionOutOfRange(const ComparisonOptions& options);

} // namespace kvt::profiling
