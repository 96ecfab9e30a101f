// The frame is measured inside the interpreter, so that its start and pandas' import, which take
// longer than reading a small log, stay out of the figures.
#include "TableTargets.h"

#include "tables/ExecutionText.h"

#include <cstdio>
#include <sstream>

namespace kvt::profiling {

namespace {

constexpr double mebibyte = 1024.0 * 1024.0;

// Prints: seconds, CPU seconds, peak bytes before the call, peak bytes after it, frame bytes.
constexpr const char* frameScript = R"(
import resource, sys, time
import kvtprofile
peak = lambda: resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024
before = peak()
start, cpu = time.perf_counter(), time.process_time()
frame = kvtprofile.executions(sys.argv[1])
seconds, cpu = time.perf_counter() - start, time.process_time() - cpu
print(seconds, cpu, before, peak(), int(frame.memory_usage(deep=True).sum()))
)";

// text in single quotes for the shell.
std::string quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text)
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

} // namespace

bool exportExecutionsCsv(const std::string& logPath, const std::string& outputPath) {
  std::FILE* file = std::fopen(outputPath.c_str(), "wb");
  if (!file)
    return false;
  const ExecutionTextResult result =
      writeExecutionText(logPath, {}, ExecutionTextFormat::csv, [file](std::string_view text) {
        return std::fwrite(text.data(), 1, text.size(), file) == text.size();
      });
  return std::fclose(file) == 0 && result.read.complete() && result.written;
}

std::optional<FrameMeasured> measureFrame(const PythonModule& module, const std::string& logPath) {
  const std::string command = "PYTHONPATH=" + quoted(module.moduleDir) + " " +
                              quoted(module.python) + " -c " + quoted(frameScript) + " " +
                              quoted(logPath);
  std::FILE* pipe = popen(command.c_str(), "r");
  if (!pipe)
    return std::nullopt;
  std::string printed;
  char block[256];
  for (size_t got; (got = std::fread(block, 1, sizeof block, pipe)) > 0;)
    printed.append(block, got);
  if (pclose(pipe) != 0)
    return std::nullopt;
  FrameMeasured frame;
  std::istringstream figures(printed);
  figures >> frame.call.seconds >> frame.call.cpuSeconds >> frame.importedPeakBytes >>
      frame.call.peakResidentBytes >> frame.frameBytes;
  if (!figures)
    return std::nullopt;
  return frame;
}

void printFrame(const FrameMeasured& frame, uint64_t logBytes, const Measured& floor,
                const Measured& stats) {
  printTarget("Python frame", frame.call, logBytes, floor);
  const double above = double(frame.call.peakResidentBytes - frame.importedPeakBytes);
  std::printf("  Python frame: %.1f MiB of frame, peak %.1f MiB above the imported module "
              "(%.2fx the frame); %.2fx the time of stats\n",
              double(frame.frameBytes) / mebibyte, above / mebibyte,
              above / double(frame.frameBytes), frame.call.seconds / stats.seconds);
  std::fflush(stdout);
}

void printFrameSkipped() {
  std::printf("%-14s the Python module is not built (a sanitizer or cross build)\n",
              "Python frame");
  std::fflush(stdout);
}

} // namespace kvt::profiling
