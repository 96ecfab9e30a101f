// How a command that reads logs tells what became of a read: the precise fault when a log is
// refused, what was kept and dropped when it was read partially.
#pragma once

#include "log/ParseDriver.h"

#include <CLI/CLI.hpp>

#include <ostream>
#include <string_view>

namespace kvt::profiling {

// --partial into partial, with the help every reading command shares.
void addPartialFlag(CLI::App& command, bool& partial);

// Prints on err, each line opened by "COMMAND: " ("kvt-profile-log stats: "), why read failed
// (role names the log of a comparison: "base log"), or with partial what it kept and dropped.
// Nothing for a whole read. True when what was read stands (see LogReadResult::stands).
bool reportLogRead(std::ostream& err, std::string_view command, const LogReadResult& read,
                   bool partial, std::string_view role = {});

} // namespace kvt::profiling
