// One CLI::App holds both commands; each registers itself.
#include "AnalysisCommands.h"

#include "CompareCommand.h"
#include "ReaderReports.h"
#include "StatsCommand.h"

#include <vector>

namespace kvt::profiling {

bool isAnalysisCommand(std::span<const std::string_view> args) {
  return !args.empty() && (args.front() == "stats" || args.front() == "compare");
}

int runAnalysisCommand(std::span<const std::string_view> args, ToolConsole& console) {
  CLI::App app("Run statistics and run comparison of profiling logs.", "kvt-profile-log");
  app.require_subcommand(1);
  int exitCode = exitSuccess;
  addStatsCommand(app, console, exitCode);
  addCompareCommand(app, console, exitCode);

  std::vector<std::string> arguments{"kvt-profile-log"};
  arguments.insert(arguments.end(), args.begin(), args.end());
  std::vector<const char*> argv;
  for (const std::string& argument : arguments)
    argv.push_back(argument.c_str());
  const ReaderReports reports;
  try {
    app.parse(int(argv.size()), argv.data());
  } catch (const CLI::ParseError& error) {
    return app.exit(error, console.out, console.err) == 0 ? exitSuccess : exitUsage;
  }
  return exitCode;
}

} // namespace kvt::profiling
