// Dispatch from a parsed command line to the command that does the work.
#include "RunToolCommand.h"

namespace kvt::profiling {

namespace {

struct CommandRunner {
  ToolConsole& console;

  int operator()(const HelpRequest& help) const {
    console.out << usageText(help.command);
    return exitSuccess;
  }
  int operator()(const UsageError& error) const {
    console.err << "kvt-profile-log: " << error.message << "\n\n" << usageText(error.command);
    return exitUsage;
  }
  int operator()(const DumpOptions& options) const { return dumpLog(options, console); }
  int operator()(const BuildOptions& options) const { return buildLog(options, console); }
  int operator()(const SynthOptions& options) const { return synthLog(options, console); }
};

} // namespace

int runToolCommand(const ToolCommand& command, ToolConsole& console) {
  return std::visit(CommandRunner{console}, command);
}

} // namespace kvt::profiling
