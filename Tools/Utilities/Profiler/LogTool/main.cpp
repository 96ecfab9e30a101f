// kvt-profile-log: looks inside, builds, synthesises and measures profiling logs.
#include "AnalysisCommands.h"
#include "RunToolCommand.h"
#include "ToolOptions.h"

#include <iostream>
#include <string_view>
#include <vector>

#if defined(_WIN32)
#include <io.h>
#define isatty _isatty
#else
#include <unistd.h>
#endif

int main(int argc, char** argv) {
  using namespace kvt::profiling;
  std::ios::sync_with_stdio(false); // a dump can be gigabytes of text
  const std::vector<std::string_view> args(argv + 1, argv + argc);
  ToolConsole console{std::cout, std::cerr, isatty(2) != 0};
  const int exitCode = isAnalysisCommand(args) ? runAnalysisCommand(args, console)
                                               : runToolCommand(parseToolOptions(args), console);
  std::cout.flush();
  return std::cout ? exitCode : exitBadInput;
}
