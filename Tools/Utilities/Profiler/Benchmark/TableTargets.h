// The long table of executions on the main log: the CSV export of `kvt-profile-log executions`
// and the data frame of kvtprofile.executions in Debian's Python.
#pragma once

#include "BenchReport.h"

#include <optional>
#include <string>

namespace kvt::profiling {

// The Python module's place; python empty when the module is not built.
struct PythonModule {
  std::string python;    // the interpreter the module is built for
  std::string moduleDir; // the folder of the built module
};

// The export into outputPath, as the command writes it.
bool exportExecutionsCsv(const std::string& logPath, const std::string& outputPath);

// What kvtprofile.executions cost, measured by Python itself around the one call, import left
// out: its time, its CPU time, the peak resident memory before and after the call.
struct FrameMeasured {
  Measured call;
  uint64_t importedPeakBytes = 0; // the interpreter with pandas and the module loaded
  uint64_t frameBytes = 0;        // the frame's own memory, pandas' deep memory_usage
};

// Runs the interpreter on the log in a process of its own; none when it failed (with the
// interpreter's message on the standard error).
std::optional<FrameMeasured> measureFrame(const PythonModule& module, const std::string& logPath);

// The frame's row of the target table and a line on its memory and its time against stats.
void printFrame(const FrameMeasured& frame, uint64_t logBytes, const Measured& floor,
                const Measured& stats);
// The note that stands for the frame's row when the module is not built.
void printFrameSkipped();

} // namespace kvt::profiling
