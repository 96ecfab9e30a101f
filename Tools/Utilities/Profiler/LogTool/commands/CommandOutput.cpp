// Text outputs are small next to the logs they come from, so they are made whole in memory first.
#include "CommandOutput.h"

#include "log/OutputFile.h"

namespace kvt::profiling {

bool writeCommandOutput(ToolConsole& console, std::string_view command,
                        const std::string& outputPath, std::string_view text) {
  if (outputPath.empty()) {
    console.out << text;
    return true;
  }
  std::string failure;
  if (writeWholeFile(outputPath, text, failure))
    return true;
  console.err << command << ": cannot write " << outputPath << ": " << failure << '\n';
  return false;
}

} // namespace kvt::profiling
