// The page is bounded whatever the log (a few thousand points per series), so its size on the
// largest log is the figure to watch, beside the time it adds to the statistics pass; a
// comparison of thousands of series is the page's other extreme.
#include "ReportTarget.h"

#include "ReportBuild.h"

#include <cstdio>
#include <filesystem>

namespace kvt::profiling {

namespace {

bool writePage(const ReportOptions& options, const std::string& pagePath, std::string& findings) {
  Report report;
  std::string failure;
  if (!readReport(options, report).back().complete() || !writeReportFile(pagePath, report, failure))
    return false;
  findings = std::to_string(std::filesystem::file_size(pagePath));
  return true;
}

} // namespace

bool writeBenchReport(const std::string& logPath, const std::string& pagePath,
                      std::string& findings) {
  ReportOptions options;
  options.logPath = logPath;
  return writePage(options, pagePath, findings);
}

bool writeBenchComparisonPage(const std::string& basePath, const std::string& newPath,
                              const std::string& pagePath, std::string& findings) {
  ReportOptions options;
  options.logPath = newPath;
  options.basePath = basePath;
  return writePage(options, pagePath, findings);
}

void printReportPage(const std::string& findings, const Measured& report, const Measured& stats) {
  std::printf("report page: %.2f MB, %.2f x the time of stats\n", std::stod(findings) / 1e6,
              report.seconds / stats.seconds);
  std::fflush(stdout);
}

void printComparisonPage(const std::string& shape, const std::string& findings,
                         const Measured& written) {
  std::printf("comparison page: %s: %.2f MB, written in %.3f s (CPU %.3f s, peak RSS %.1f MiB)\n",
              shape.c_str(), std::stod(findings) / 1e6, written.seconds, written.cpuSeconds,
              double(written.peakResidentBytes) / (1 << 20));
  std::fflush(stdout);
}

} // namespace kvt::profiling
