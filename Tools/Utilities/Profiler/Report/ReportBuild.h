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
  std::vector<PageLog> logs; // the base first, when there is one; a history's first and last run
  std::string logsJoin = " against ";
};

// Reads the base log, when there is one, then the log into report, and compares them. Each log's
// read in that order (a run's figures keep a partial one): the last is incomplete, and does not
// stand under options.statistics.partial, when that log cannot be read; the reader has then
// reported to the log facility and report is left as it was.
std::vector<LogReadResult> readReport(const ReportOptions& options, Report& report);

// The report of a history: title (empty: "History of N runs"), its first and last run as its
// logs.
Report buildHistoryReport(std::string title, PageHistory history);

// Writes the page of report to path, whole or not at all (see OutputFile); false, with the
// system's reason in failure, when it cannot be written.
bool writeReportFile(const std::string& path, const Report& report, std::string& failure);

} // namespace kvt::profiling
