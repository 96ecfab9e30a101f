// The viewer's options and their defaults.
#pragma once

#include "plugin/VisibilityLevel.h"

#include <cstdint>
#include <string>

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
};

} // namespace kvt::profiling
