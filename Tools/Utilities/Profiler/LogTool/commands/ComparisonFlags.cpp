// The comparison's options as flags; their ranges and defaults are the comparison's own.
#include "ComparisonFlags.h"

#include <charconv>
#include <string>

namespace kvt::profiling {

namespace {

// A plain decimal number in the option's range, or "needs WHAT, not 'TEXT'".
CLI::Validator decimalNumber(ComparisonOption option) {
  return CLI::Validator(
      [option](const std::string& text) -> std::string {
        double value = 0;
        const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (status == std::errc() && end == text.data() + text.size() && isInRange(option, value))
          return {};
        return "needs " + std::string(describeRange(option)) + ", not '" + text + "'";
      },
      "");
}

// "(default 0.01)": the shortest text that reads back as the default.
std::string describeDefault(ComparisonOption option) {
  char digits[32];
  const double value = readOption(ComparisonOptions{}, option);
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  return "(default " + std::string(digits, end) + ")";
}

} // namespace

void addComparisonOptions(CLI::App& command, ComparisonOptions& options) {
  command
      .add_option("--alpha", options.alpha,
                  "the chance that a comparison of equal runs finds some series\n"
                  "slower " +
                      describeDefault(ComparisonOption::alpha))
      ->option_text("A")
      ->check(decimalNumber(ComparisonOption::alpha));
  command
      .add_option("--threshold", options.thresholdPercent,
                  "the change, in percent of the base median, up to which a\n"
                  "series is the same " +
                      describeDefault(ComparisonOption::thresholdPercent))
      ->option_text("PCT")
      ->check(decimalNumber(ComparisonOption::thresholdPercent));
  command
      .add_option("--min-change", options.minChangeUnits,
                  "the change, in the log's unit, up to which a series is the\n"
                  "same whatever its percentage " +
                      describeDefault(ComparisonOption::minChangeUnits))
      ->option_text("UNITS")
      ->check(decimalNumber(ComparisonOption::minChangeUnits));
  command.add_flag("--relative", options.relative,
                   "judge steps and back-end records net of each graph's run-wide\n"
                   "shift (the new values divided by its ratio)");
}

} // namespace kvt::profiling
