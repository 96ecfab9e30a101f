// kvt-profile-log: looks inside, builds, synthesises and measures profiling logs.
#include "ProgressLine.h"
#include "commands/RunToolCommand.h"

#include <iostream>

int main(int argc, char** argv) {
  using namespace kvt::profiling;
  std::ios::sync_with_stdio(false); // a dump can be gigabytes of text
  ToolConsole console{std::cout, std::cerr, standardErrorIsTerminal()};
  const int exitCode = runToolCommand({argv + 1, argv + argc}, console);
  std::cout.flush();
  return std::cout ? exitCode : exitBadInput;
}
