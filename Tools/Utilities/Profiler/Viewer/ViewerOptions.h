// The viewer's command line: its options, their defaults, and the help and usage texts.
#pragma once

#include "plugin/VisibilityLevel.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kvt::profiling {

struct ViewerOptions {
  std::string inputPath;
  std::string outputPath;             // empty when --output is absent
  std::string reader = "chrometrace"; // "chrometrace", "csv" or the path of a reader library
  // The highest level keeps every message of an ordinary log: a message is kept when its own
  // level is below this one.
  VisibilityLevel visibilityLevel = VisibilityLevel::keepAll;
  bool extendedBackendReport = false;
  int32_t logLevel = 1; // reports up to this level reach the standard error; 0 silences them
  bool showHelp = false;
};

struct ParsedOptions {
  ViewerOptions options;
  std::string error; // empty when the arguments were valid
};

// Parses the arguments after the program name. Values follow their option as the next argument
// ("--input a.log") or after '=' ("--input=a.log"); a later option overrides an earlier one.
// --help (or -h) stops parsing and needs no --input. An unknown option, a missing or empty
// value, a number out of range, a stray argument or a missing --input sets error.
ParsedOptions parseViewerOptions(std::span<const std::string_view> arguments);

// The usage lines printed after a command-line error.
std::string_view usageText();
// The full help printed for --help: every option, its default, and the exit codes.
std::string helpText();

} // namespace kvt::profiling
