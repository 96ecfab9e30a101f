// Where a command of the log tool writes: its output, its diagnostics, and whether the
// diagnostics go to a terminal (which alone gets progress lines).
#pragma once

#include <ostream>

namespace kvt::profiling {

struct ToolConsole {
  std::ostream& out;
  std::ostream& err;
  bool errIsTerminal = false;
};

// Exit codes of the tool; a wrong command line ends in exitCommandLineError (CommandLine.h).
enum ExitCode : int {
  exitSuccess = 0,
  exitBadInput = 1, // bad input, or output that cannot be written
};

} // namespace kvt::profiling
