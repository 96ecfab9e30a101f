// history's false-alarm rate, detection rate and delay, measured over seeded histories of
// synthesised runs, and its time over 1,000 stats documents.
#pragma once

#include <cstdint>
#include <string>

namespace kvt::profiling {

struct HistoryCalibrationOptions {
  uint32_t histories = 200;  // of each cell of the table
  uint32_t timedRuns = 1000; // stats documents of the timing
};

// Prints the table and the timing on the standard output; false, with the reason on the
// standard error, when a log or document could not be written or read in dir.
bool runHistoryCalibration(const HistoryCalibrationOptions& options, const std::string& dir);

} // namespace kvt::profiling
