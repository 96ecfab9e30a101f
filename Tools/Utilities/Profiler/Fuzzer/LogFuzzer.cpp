// Feeds arbitrary bytes to both readers as a log file: parse, then every output into a
// scratch directory. Any crash, leak, hang or runaway allocation is a finding.
#include "plugin/KvtProfileLogReader.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include <unistd.h>

namespace {

using namespace kvt::profiling;

// Memory-backed when the machine has it: the input and outputs are rewritten on every run.
const std::filesystem::path& scratchDir() {
  static const std::filesystem::path dir = [] {
    const std::filesystem::path root = std::filesystem::is_directory("/dev/shm")
                                           ? std::filesystem::path("/dev/shm")
                                           : std::filesystem::temp_directory_path();
    auto path = root / ("kvt-log-fuzzer-" + std::to_string(getpid()));
    std::filesystem::create_directories(path);
    return path;
  }();
  return dir;
}

// Parses the log and writes the reader's outputs; what they print is thrown away.
void runReader(KvtProfileLogReader& reader, const std::string& outputPath) {
  if (reader.parseLog(false)) {
    reader.printHeaderDetails();
    reader.writeOutputs(outputPath);
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string logPath = (scratchDir() / "input.log").string();
  {
    std::ofstream log(logPath, std::ios::binary | std::ios::trunc);
    log.write(reinterpret_cast<const char*>(data), std::streamsize(size));
  }
  std::ostringstream discarded;
  std::streambuf* standardOutput = std::cout.rdbuf(discarded.rdbuf());

  KvtProfileLogReaderChrometrace traceReader(logPath, VisibilityLevel::keepAll);
  runReader(traceReader, (scratchDir() / "trace.json").string());
  KvtProfileLogReader csvReader(logPath, VisibilityLevel::keepAll);
  runReader(csvReader, (scratchDir() / "events.csv").string());

  std::cout.rdbuf(standardOutput);
  return 0;
}
