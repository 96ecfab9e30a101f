// The command line of kvt-profile-log: which command to run with which options, or why the
// line is wrong.
#pragma once

#include "LogBuild.h"
#include "LogDump.h"
#include "LogSynth.h"

#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace kvt::profiling {

// Help on one command, or the overview when command is empty.
struct HelpRequest {
  std::string command;
};

// A wrong command line: what is wrong, and the command it was meant for (empty when none was
// recognised).
struct UsageError {
  std::string message;
  std::string command;
};

using ToolCommand = std::variant<HelpRequest, UsageError, DumpOptions, BuildOptions, SynthOptions>;

// Reads the arguments that follow the program name, e.g. {"dump", "run.log"}.
ToolCommand parseToolOptions(std::span<const std::string_view> args);

// The usage text of command; the overview when command is empty.
std::string usageText(std::string_view command);

} // namespace kvt::profiling
