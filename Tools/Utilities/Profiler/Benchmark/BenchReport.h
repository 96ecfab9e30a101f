// The benchmark's tables on the standard output: seconds, MB/s of input, the ratio to the floor
// and peak resident memory of each target; then the scaling series.
#pragma once

#include "ComparisonTiming.h"
#include "FloorWalk.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kvt::profiling {

// The best of several runs of one target on one log.
struct Measured {
  double seconds = 0;             // the fastest run
  double cpuSeconds = 0;          // of the fastest run: far below seconds on a busy machine
  uint64_t peakResidentBytes = 0; // the largest of the runs
};

void printInput(const std::string& shape, uint64_t logBytes, const LogWalk& walk, uint32_t runs,
                uint32_t csvRuns);
void printTargetHeader();
void printTarget(const std::string& name, const Measured& target, uint64_t logBytes,
                 const Measured& floor);

// The comparison's own share of the compare row: its series and its time beyond both passes.
void printComparisonNote(const ComparisonTiming& timing);

void printScalingHeader();
// One log of the series: its executions, size and records; the floor, the trace reader and, when
// measured, the CSV reader on it.
void printScalingRow(const std::string& label, uint64_t executions, uint32_t steps,
                     uint64_t logBytes, const LogWalk& walk, const Measured& floor,
                     const Measured& trace, const std::optional<Measured>& csv);

} // namespace kvt::profiling
