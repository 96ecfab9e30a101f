// kvt-profile-viewer: reads a profiling log with a reader library loaded at run time.
#include "StderrLogger.h"
#include "ViewerOptions.h"
#include "ViewerRun.h"

#include <cstdio>
#include <string_view>
#include <vector>

int main(int argc, char** argv) {
  using namespace kvt::profiling;
  const std::vector<std::string_view> arguments(argv + 1, argv + argc);
  const ParsedOptions parsed = parseViewerOptions(arguments);
  if (!parsed.error.empty()) {
    printDiagnostic(parsed.error);
    std::fwrite(usageText().data(), 1, usageText().size(), stderr);
    return exitUsage;
  }
  if (parsed.options.showHelp) {
    const std::string help = helpText();
    std::fwrite(help.data(), 1, help.size(), stdout);
    return exitSuccess;
  }
  return runViewer(parsed.options);
}
