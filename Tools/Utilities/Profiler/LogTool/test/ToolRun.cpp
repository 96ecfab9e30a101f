// In-process runs of the log tool.
#include "ToolRun.h"

#include "RunToolCommand.h"
#include "ToolOptions.h"

#include <sstream>
#include <string_view>

namespace kvt::profiling::testing {

ToolRun runTool(const std::vector<std::string>& args) {
  const std::vector<std::string_view> views(args.begin(), args.end());
  std::ostringstream out;
  std::ostringstream err;
  ToolConsole console{out, err, false};
  ToolRun run;
  run.exitCode = runToolCommand(parseToolOptions(views), console);
  run.out = out.str();
  run.err = err.str();
  return run;
}

} // namespace kvt::profiling::testing
