// The benchmark's options: the sizes of its inputs and how often each is measured.
#pragma once

#include "Calibration.h"

#include <cstdint>
#include <string>

namespace kvt::profiling {

struct BenchOptions {
  uint64_t executions = 9000;     // of each of the 4 graphs of 64 steps: about 1.2 GB of log
  uint64_t scalingBase = 20;      // the series runs 10, 100 and 1000 times this many executions
  uint64_t wideExecutions = 1000; // of the one graph of 10,000 steps
  uint64_t pageExecutions = 200;  // of each run of the comparison page's graph of 2,000 steps
  uint32_t runs = 3;              // each figure is the best of this many
  uint32_t csvRuns = 1;           // the CSV reader writes gigabytes; its best of this many
  std::string workDir;            // empty: a fresh directory in the temporary directory
  CalibrationOptions calibration;
};

} // namespace kvt::profiling
