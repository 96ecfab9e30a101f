// The comparison's own time is measured inside the child, since the passes over both logs take
// most of the child's wall time.
#include "ComparisonTiming.h"

#include "reports/CompareReport.h"
#include "statistics/StatisticsPass.h"

#include <chrono>
#include <cstring>
#include <sstream>

namespace kvt::profiling {

bool runComparison(const std::string& basePath, const std::string& newPath, std::string& findings) {
  RunStatistics base;
  RunStatistics next;
  if (!readRunStatistics(basePath, {}, base) || !readRunStatistics(newPath, {}, next))
    return false;
  const auto start = std::chrono::steady_clock::now();
  const Comparison comparison = compareRuns(base, next, {});
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  std::ostringstream discarded;
  writeComparisonTable(discarded, comparison);
  const ComparisonTiming timing{comparison.rows.size(), elapsed.count()};
  findings.assign(reinterpret_cast<const char*>(&timing), sizeof timing);
  return true;
}

ComparisonTiming readComparisonTiming(const std::string& findings) {
  ComparisonTiming timing;
  if (findings.size() == sizeof timing)
    std::memcpy(&timing, findings.data(), sizeof timing);
  return timing;
}

} // namespace kvt::profiling
