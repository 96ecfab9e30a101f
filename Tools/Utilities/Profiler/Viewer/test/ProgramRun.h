// Runs a built program as a subprocess, captures what it prints and compares it with golden files,
// for end-to-end tests.
#pragma once

#include "support/GoldenCases.h"

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

// Expects the run's standard output and standard error to be the viewer's golden files
// golden/<name>.stdout and golden/<name>.stderr, as a program writes them in text mode.
inline void expectGoldenRun(const std::string& name, const ProgramRun& run) {
  const std::filesystem::path golden = KVT_VIEWER_GOLDEN_DIR;
  expectGoldenFile(golden / (name + ".stdout"), run.standardOutput, true);
  expectGoldenFile(golden / (name + ".stderr"), run.standardError, true);
}

} // namespace kvt::profiling::testing
