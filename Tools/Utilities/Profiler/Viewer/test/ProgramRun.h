// Runs a built program as a subprocess and captures what it prints, for end-to-end tests.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kvt::profiling::testing {

struct ProgramRun {
  int exitCode = -1; // -1 when the program did not exit normally
  std::string standardOutput;
  std::string standardError;
};

// Runs program with arguments in workingDir and waits for it. Its standard input is empty and its
// environment this process's with TZ=UTC, so that local times print the same on every machine.
ProgramRun runProgram(const std::filesystem::path& program,
                      const std::vector<std::string>& arguments,
                      const std::filesystem::path& workingDir);

} // namespace kvt::profiling::testing
