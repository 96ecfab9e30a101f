// The report row of the benchmark: kvt-profile-log report on the main log, its time against the
// statistics pass alone and the size of the page it writes.
#pragma once

#include "BenchReport.h"

#include <cstdint>
#include <string>

namespace kvt::profiling {

// The report as the tool writes it: the pass, the figures and the page at pagePath. Leaves the
// page's size in bytes, as text, in findings.
bool writeBenchReport(const std::string& logPath, const std::string& pagePath,
                      std::string& findings);

// "report page: 2.6 MB, 1.12 x the time of stats" under the targets' table.
void printReportPage(const std::string& findings, const Measured& report, const Measured& stats);

// The comparison's report as the tool writes it: both passes, the comparison and the page at
// pagePath. Leaves the page's size in bytes, as text, in findings.
bool writeBenchComparisonPage(const std::string& basePath, const std::string& newPath,
                              const std::string& pagePath, std::string& findings);

// "comparison page: 2 runs x 1 graph x 2000 steps x 200 executions: 4.40 MB, written in 1.23 s".
void printComparisonPage(const std::string& shape, const std::string& findings,
                         const Measured& written);

} // namespace kvt::profiling
