// The comparison's options with their checks, in one place for every command that compares.
#include "ComparisonOptions.h"

#include <charconv>
#include <string>

namespace kvt::profiling {

namespace {

// A plain decimal number that accepted() takes, or "needs WHAT, not 'TEXT'".
template <typename Accepted> CLI::Validator decimalNumber(std::string what, Accepted accepted) {
  return CLI::Validator(
      [what, accepted](const std::string& text) -> std::string {
        double value = 0;
        const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (status == std::errc() && end == text.data() + text.size() && accepted(value))
          return {};
        return "needs " + what + ", not '" + text + "'";
      },
      "");
}

} // namespace

void addComparisonOptions(CLI::App& command, ComparisonOptions& options) {
  command
      .add_option("--alpha", options.alpha,
                  "the chance that a comparison of equal runs finds some series\n"
                  "slower (default 0.01)")
      ->option_text("A")
      ->check(decimalNumber("a probability above 0 and below 0.5",
                            [](double value) { return value > 0 && value < 0.5; }));
  command
      .add_option("--threshold", options.thresholdPercent,
                  "the change, in percent of the base median, up to which a\n"
                  "series is the same (default 5)")
      ->option_text("PCT")
      ->check(decimalNumber("a percentage of 0 or more", [](double value) { return value >= 0; }));
  command
      .add_option("--min-change", options.minChangeUnits,
                  "the change, in the log's unit, up to which a series is the\n"
                  "same whatever its percentage (default 0)")
      ->option_text("UNITS")
      ->check(
          decimalNumber("a number of units of 0 or more", [](double value) { return value >= 0; }));
  command.add_flag("--relative", options.relative,
                   "judge steps and back-end records net of each graph's run-wide\n"
                   "shift (the new values divided by its ratio)");
}

} // namespace kvt::profiling
