// A log's date is its header's creation time, shown in UTC so that a page reads the same
// anywhere.
#include "ReportBuild.h"

#include "log/OutputFile.h"

#include <ctime>
#include <filesystem>
#include <sstream>

namespace kvt::profiling {

namespace {

std::string formatCreated(std::optional<uint64_t> createdUs) {
  if (!createdUs)
    return {};
  const auto time = std::time_t(*createdUs / 1000000);
  std::tm utc{};
  if (!gmtime_r(&time, &utc))
    return {};
  char text[32];
  return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M UTC", &utc));
}

} // namespace

std::vector<LogReadResult> readReport(const ReportOptions& options, Report& report) {
  Report read;
  read.input.title = options.title.empty()
                         ? std::filesystem::path(options.logPath).filename().string()
                         : options.title;
  read.input.skipFirst = options.statistics.skipFirst;
  std::vector<LogReadResult> reads;
  RunStatistics base; // only its comparison is drawn, so it needs no figures of its own
  if (options.basePath) {
    reads.push_back(readRunStatistics(*options.basePath, options.statistics, base));
    if (!reads.back().stands(options.statistics.partial))
      return reads;
    read.logs.push_back({*options.basePath, formatCreated(base.createdUs)});
  }
  RunStatistics next;
  reads.push_back(readRunFigures(options.logPath, options.statistics, next, read.input.run));
  if (!reads.back().stands(options.statistics.partial))
    return reads;
  read.logs.push_back({options.logPath, formatCreated(next.createdUs)});
  if (options.basePath) {
    read.input.comparison = figurePageComparison(base, next, options.comparison);
    read.input.comparison->basePath = *options.basePath;
    read.input.comparison->basePartial = base.partial;
    read.input.comparison->newPath = options.logPath;
  }
  report = std::move(read);
  return reads;
}

Report buildHistoryReport(std::string title, PageHistory history) {
  Report report;
  const std::vector<HistoryRun>& runs = history.history.runs;
  report.input.title =
      title.empty() ? "History of " + std::to_string(runs.size()) + " runs" : std::move(title);
  report.input.skipFirst = history.options.skipFirst;
  if (!runs.empty())
    report.logs.push_back({runs.front().source, formatCreated(runs.front().createdUs)});
  if (runs.size() > 1)
    report.logs.push_back({runs.back().source, formatCreated(runs.back().createdUs)});
  report.logsJoin = " to ";
  report.input.history = std::move(history);
  return report;
}

bool writeReportFile(const std::string& path, const Report& report, std::string& failure) {
  std::ostringstream data;
  writeReportData(data, report.input);
  std::ostringstream page;
  writeReportPage(page, report.input.title, report.logs, report.logsJoin, data.str());
  return writeWholeFile(path, page.str(), failure);
}

} // namespace kvt::profiling
