// In-process runs of the log tool.
#include "ToolRun.h"

#include "commands/RunToolCommand.h"

#include <sstream>

namespace kvt::profiling::testing {

ToolRun runTool(const std::vector<std::string>& args) {
  std::ostringstream out;
  std::ostringstream err;
  ToolConsole console{out, err, false};
  ToolRun run;
  run.exitCode = runToolCommand(args, console);
  run.out = out.str();
  run.err = err.str();
  return run;
}

} // namespace kvt::profiling::testing
