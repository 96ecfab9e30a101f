// kvt-profile-viewer: reads a profiling log with a reader library loaded at run time.
#include "CommandLine.h"
#include "ViewerCommandLine.h"
#include "ViewerRun.h"

#include <iostream>

int main(int argc, char** argv) {
  using namespace kvt::profiling;
  ViewerOptions options;
  CLI::App app("", "kvt-profile-viewer");
  addViewerOptions(app, options);
  if (const std::optional<int> status =
          parseCommandLine(app, {argv + 1, argv + argc}, std::cout, std::cerr))
    return *status;
  return runViewer(options);
}
