// kvt-profile-log stats: the statistics of every graph's executions in one log.
#pragma once

#include "ToolConsole.h"

#include <CLI/CLI.hpp>

namespace kvt::profiling {

// Adds the stats command to app; once parsed, it runs and leaves its exit status in exitCode:
// 0 done, 1 the log cannot be read.
void addStatsCommand(CLI::App& app, ToolConsole& console, int& exitCode);

// Refuses a negative number, which CLI11 would otherwise wrap into a huge unsigned one.
inline CLI::Validator nonNegative() {
  return CLI::Validator(
      [](const std::string& text) {
        return text.starts_with('-') ? "must be 0 or more" : std::string();
      },
      "");
}

// The bound on memory that both statistics commands state in their help.
inline constexpr const char* statisticsMemoryNote =
    "Memory: one chunk of the log, plus 8 bytes per value kept (up to twice that while a series\n"
    "grows): each counted execution keeps its duration, its queue wait, each top-level back-end\n"
    "record's value and each step's span and wait, nothing else.";

} // namespace kvt::profiling
