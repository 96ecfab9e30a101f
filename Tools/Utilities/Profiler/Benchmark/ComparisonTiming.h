// What kvt-profile-log compare costs: the statistics pass over both logs, then the comparison of
// their series, timed apart so that its cost per series shows.
#pragma once

#include <cstdint>
#include <string>

namespace kvt::profiling {

struct ComparisonTiming {
  uint64_t series = 0;          // rows of the comparison
  double comparisonSeconds = 0; // compareRuns alone, after both passes
};

// Reads both logs, compares them and writes the table (discarded), as the tool does; false when
// a log cannot be read. timing is left in findings for the parent process.
bool runComparison(const std::string& basePath, const std::string& newPath, std::string& findings);

// The timing runComparison left in findings, or zeros.
ComparisonTiming readComparisonTiming(const std::string& findings);

} // namespace kvt::profiling
