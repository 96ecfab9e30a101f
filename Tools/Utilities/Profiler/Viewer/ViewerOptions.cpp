// Parsing the viewer's command line.
#include "ViewerOptions.h"

#include <charconv>
#include <optional>

namespace kvt::profiling {

namespace {

constexpr int32_t quietestLogLevel = 0; // no report reaches the standard error
constexpr int32_t loudestLogLevel = 5;  // verbose notes, the library's most detailed level

constexpr std::string_view usage =
    "usage: kvt-profile-viewer --input LOG [--output FILE] [--reader chrometrace|csv|PATH]\n"
    "                          [--visibility N] [--extended-backend-report] [--log-level N]\n"
    "       kvt-profile-viewer --help\n";

constexpr std::string_view helpIntroduction =
    "kvt-profile-viewer: reads a profiling log with a reader library loaded at run time and\n"
    "writes the reader's outputs. The standard output carries only what the library prints\n"
    "(parse warnings, then the statistics summary); the viewer's own messages and the library's\n"
    "reports go to the standard error.\n"
    "\n";

constexpr std::string_view helpOptions =
    "\n"
    "options (a value may also follow '=', as in --input=LOG):\n"
    "  --input LOG             the profiling log to read; required\n"
    "  --output FILE           the reader's output file: the Chrome trace for the chrometrace\n"
    "                          reader, the CSV event log for the csv reader. Without it the\n"
    "                          reader is given an empty name: the chrometrace reader then\n"
    "                          refuses to write, the csv reader prints only the summary\n"
    "  --reader NAME|PATH      the reader library: chrometrace (default) or csv, found next to\n"
    "                          this program or in its installed layout, or the path of a\n"
    "                          reader library\n"
    "  --visibility N          keep the log's messages whose own visibility level is below N,\n"
    "                          from -128 to 127; default 127, which keeps every message of an\n"
    "                          ordinary log\n"
    "  --extended-backend-report\n"
    "                          ask for the extended back-end report (readers that support it\n"
    "                          also write object events out to files)\n"
    "  --log-level N           print the library's reports up to level N on the standard error:\n"
    "                          0 none, 1 errors (default), 2 warnings, 3 info, 4 debug,\n"
    "                          5 verbose\n"
    "  -h, --help              print this help and exit\n"
    "\n"
    "exit status: 0 when the outputs were written; 1 when the reader library cannot be loaded,\n"
    "the log cannot be parsed or the outputs cannot be written; 2 for a command-line error.\n";

// Reads value as a whole number from lowest to highest; the error text when it is not one.
std::optional<std::string> readNumber(std::string_view option, std::string_view value,
                                      int32_t lowest, int32_t highest, int32_t& number) {
  const auto [end, failure] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (failure == std::errc() && end == value.data() + value.size() && number >= lowest &&
      number <= highest)
    return std::nullopt;
  return "option " + std::string(option) + " needs a whole number from " + std::to_string(lowest) +
         " to " + std::to_string(highest) + ", not '" + std::string(value) + "'";
}

// An option that takes a value, and how the value is stored; the error text when the value is
// not acceptable.
struct ValueOption {
  std::string_view name;
  std::optional<std::string> (*store)(std::string_view option, std::string_view value,
                                      ViewerOptions& options);
};

constexpr ValueOption valueOptions[] = {
    {"--input",
     [](std::string_view, std::string_view value, ViewerOptions& options) {
       options.inputPath = value;
       return std::optional<std::string>();
     }},
    {"--output",
     [](std::string_view, std::string_view value, ViewerOptions& options) {
       options.outputPath = value;
       return std::optional<std::string>();
     }},
    {"--reader",
     [](std::string_view, std::string_view value, ViewerOptions& options) {
       options.reader = value;
       return std::optional<std::string>();
     }},
    {"--visibility",
     [](std::string_view option, std::string_view value, ViewerOptions& options) {
       int32_t level = 0;
       std::optional<std::string> error = readNumber(option, value, INT8_MIN, INT8_MAX, level);
       options.visibilityLevel = VisibilityLevel(level);
       return error;
     }},
    {"--log-level",
     [](std::string_view option, std::string_view value, ViewerOptions& options) {
       return readNumber(option, value, quietestLogLevel, loudestLogLevel, options.logLevel);
     }},
};

const ValueOption* findValueOption(std::string_view name) {
  for (const ValueOption& option : valueOptions)
    if (option.name == name)
      return &option;
  return nullptr;
}

} // namespace

ParsedOptions parseViewerOptions(std::span<const std::string_view> arguments) {
  ParsedOptions parsed;
  ViewerOptions& options = parsed.options;
  const auto fail = [&parsed](std::string error) {
    parsed.error = std::move(error);
    return parsed;
  };
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    if (!argument.starts_with('-'))
      return fail("unexpected argument '" + std::string(argument) + "'");
    const size_t equals = argument.find('=');
    const std::string_view option = argument.substr(0, equals);
    const bool hasInlineValue = equals != std::string_view::npos;

    if (option == "--help" || option == "-h" || option == "--extended-backend-report") {
      if (hasInlineValue)
        return fail("option " + std::string(option) + " takes no value");
      if (option == "--extended-backend-report") {
        options.extendedBackendReport = true;
        continue;
      }
      options.showHelp = true;
      return parsed;
    }
    const ValueOption* valueOption = findValueOption(option);
    if (!valueOption)
      return fail("unknown option '" + std::string(option) + "'");

    // A following option is not taken for a value: "--input --output x" lacks the input.
    std::string_view value;
    if (hasInlineValue)
      value = argument.substr(equals + 1);
    else if (i + 1 < arguments.size() && !arguments[i + 1].starts_with("--"))
      value = arguments[++i];
    if (value.empty())
      return fail("option " + std::string(option) + " needs a value");
    if (std::optional<std::string> error = valueOption->store(option, value, options))
      return fail(std::move(*error));
  }
  if (options.inputPath.empty())
    return fail("option --input is required");
  return parsed;
}

std::string_view usageText() {
  return usage;
}

std::string helpText() {
  return std::string(helpIntroduction).append(usage).append(helpOptions);
}

} // namespace kvt::profiling
