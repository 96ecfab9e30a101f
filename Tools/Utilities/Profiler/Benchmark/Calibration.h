// compare's false-alarm rate and power, measured over seeded pairs of synthesised runs: pairs of
// one model with fresh noise and no change, pairs whose new run has one step slower, and pairs
// whose new run has its largest step 30 % slower, judged relative to the run.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kvt::profiling {

struct CalibrationOptions {
  uint32_t pairs = 200;                            // of each cell of the table
  std::vector<uint64_t> executions{50, 200, 1000}; // per graph, a row each
};

// Prints the table on the standard output; false, with the reason on the standard error, when a
// log could not be written or read in dir.
bool runCalibration(const CalibrationOptions& options, const std::string& dir);

} // namespace kvt::profiling
