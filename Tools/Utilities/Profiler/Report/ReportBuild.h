// A report from its logs: one statistics pass per log, the figures of each, and the page.
#pragma once

#include "ReportData.h"
#include "ReportPage.h"

#include <optional>
#include <string>
#include <vector>

namespace kvt::profiling {

struct ReportOptions {
  std::string logPath;
  std::optional<std::string> basePath; // the run the log is compared with
  std::string title;                   // empty: the log's file name
  StatisticsOptions statistics;
  ComparisonOptions comparison; // with a base
};

struct Report {
  ReportInput input;
  std::vector<PageLog> logs; // the base first, when there is one
};

// Reads the base log, when there is one, then the log into report, and compares them. False when
// one cannot be read, with the reader's report to the log facility and its path in unreadablePath.
bool readReport(const ReportOptions& options, Report& report, std::string& unreadablePath);

// Writes the page of report to path, whole or not at all; false when it cannot be written.
bool writeReportFile(const std::string& path, const Report& report);

} // namespace kvt::profiling
