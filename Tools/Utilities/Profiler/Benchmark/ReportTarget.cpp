// The page is bounded whatever the log (a few thousand points per series), so its size on the
// largest log is the figure to watch, beside the time it adds to the statistics pass.
#include "ReportTarget.h"

#include "ReportBuild.h"

#include <cstdio>
#include <filesystem>

namespace kvt::profiling {

bool writeBenchReport(const std::string& logPath, const std::string& pagePath,
                      std::string& findings) {
  ReportOptions options;
  options.logPath = logPath;
  Report report;
  std::string failure;
  if (!readReport(options, report).back().complete() || !writeReportFile(pagePath, report, failure))
    return false;
  findings = std::to_string(std::filesystem::file_size(pagePath));
  return true;
}

void printReportPage(const std::string& findings, const Measured& report, const Measured& stats) {
  std::printf("report page: %.2f MB, %.2f x the time of stats\n", std::stod(findings) / 1e6,
              report.seconds / stats.seconds);
  std::fflush(stdout);
}

} // namespace kvt::profiling
