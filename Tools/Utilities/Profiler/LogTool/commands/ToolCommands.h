// The commands of the log tool. Each adds itself to the tool's command line with its options and
// its help; once the line is parsed, the command that was given runs from its callback.
#pragma once

#include "ToolConsole.h"

#include <CLI/CLI.hpp>

namespace kvt::profiling {

// What the commands share: where they print, and the exit code of the one that ran.
struct CommandRun {
  ToolConsole& console;
  int exitCode = exitSuccess;
};

void addDumpCommand(CLI::App& tool, CommandRun& run);
void addBuildCommand(CLI::App& tool, CommandRun& run);
void addSynthCommand(CLI::App& tool, CommandRun& run);
void addStatsCommand(CLI::App& tool, CommandRun& run);
void addCompareCommand(CLI::App& tool, CommandRun& run);
void addReportCommand(CLI::App& tool, CommandRun& run);
void addExecutionsCommand(CLI::App& tool, CommandRun& run);
void addHistoryCommand(CLI::App& tool, CommandRun& run);

} // namespace kvt::profiling
