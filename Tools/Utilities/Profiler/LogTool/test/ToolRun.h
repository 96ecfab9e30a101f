// Runs a command of the log tool in-process, as its main would, and keeps what it printed.
#pragma once

#include <string>
#include <vector>

namespace kvt::profiling::testing {

struct ToolRun {
  int exitCode = -1;
  std::string out;
  std::string err;
};

// args as they follow the program name, e.g. {"dump", "run.log"}.
ToolRun runTool(const std::vector<std::string>& args);

} // namespace kvt::profiling::testing
