// What the programs' command lines share: decimal numbers within a range, values that may not be
// empty, --version, and one exit status for every command-line error.
#pragma once

#include <CLI/CLI.hpp>

#include <charconv>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace kvt::profiling {

constexpr int exitCommandLineError = 2; // what every program returns for a wrong command line

// Gives app what every program of the project has: --help and --version ("NAME VERSION" on the
// standard output), help laid out in the house's columns, and a failure message
// "NAME: what is wrong" followed by where to find the help.
void setUpCommandLine(CLI::App& app);

// Parses args, the arguments after the program name, with app and runs the callbacks of what was
// parsed. Returns nothing when the program should go on; otherwise the exit status to end with:
// 0 after printing the help or the version on out, exitCommandLineError after printing what is
// wrong on err, whatever code the library itself would have given the error.
std::optional<int> parseCommandLine(CLI::App& app, const std::vector<std::string>& args,
                                    std::ostream& out, std::ostream& err);

// Accepts a whole number in plain decimal from low to high; a sign '+', a base prefix or
// trailing text are refused: "4x" -> "needs a whole number from 0 to 100000, not '4x'".
template <typename Number> CLI::Validator wholeNumber(Number low, Number high) {
  const std::string range = std::to_string(low) + " to " + std::to_string(high);
  return CLI::Validator(
      [low, high, range](const std::string& text) -> std::string {
        Number number{};
        const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (status == std::errc() && end == text.data() + text.size() && number >= low &&
            number <= high)
          return {};
        return "needs a whole number from " + range + ", not '" + text + "'";
      },
      "from " + range);
}

// Refuses an empty value, as in "--input=".
CLI::Validator nonEmpty();

} // namespace kvt::profiling
