// The tool's command line: every command adds itself, and the one given runs once it is parsed.
#include "RunToolCommand.h"

#include "CommandLine.h"
#include "ReadThreads.h"
#include "ToolCommands.h"

namespace kvt::profiling {

int runToolCommand(const std::vector<std::string>& args, ToolConsole& console) {
  CLI::App tool("Looks inside, builds, synthesises and measures profiling logs.\n",
                "kvt-profile-log");
  setUpCommandLine(tool);
  tool.require_subcommand(1);
  tool.footer("'kvt-profile-log COMMAND --help' describes a command.\n"
              "Exit status: 0 done, 1 bad input or unwritable output, 2 wrong command line,\n"
              "3 compare found a series slower.");
  if (!readThreadsSetting()) {
    console.err << "kvt-profile-log: " << describeBadReadThreads() << '\n';
    return exitCommandLineError;
  }
  CommandRun run{console};
  addDumpCommand(tool, run);
  addBuildCommand(tool, run);
  addSynthCommand(tool, run);
  addStatsCommand(tool, run);
  addCompareCommand(tool, run);
  addReportCommand(tool, run);
  addExecutionsCommand(tool, run);
  addHistoryCommand(tool, run);
  if (const std::optional<int> status = parseCommandLine(tool, args, console.out, console.err))
    return *status;
  return run.exitCode;
}

} // namespace kvt::profiling
