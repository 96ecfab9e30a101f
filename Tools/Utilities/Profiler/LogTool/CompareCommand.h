// kvt-profile-log compare: which series of a base run got slower or faster in a new run.
#pragma once

#include "ToolConsole.h"

#include <CLI/CLI.hpp>

namespace kvt::profiling {

inline constexpr int exitSlower = 3; // some series got slower: the regression gate of CI scripts

// Adds the compare command to app; once parsed, it runs and leaves its exit status in exitCode:
// 0 no series slower, exitSlower some slower, 1 a log cannot be read.
void addCompareCommand(CLI::App& app, ToolConsole& console, int& exitCode);

} // namespace kvt::profiling
