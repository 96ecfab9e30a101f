// A log's date is its header's creation time, shown in UTC so that a page reads the same
// anywhere.
#include "ReportBuild.h"

#include "ReportFile.h"

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

bool readReport(const ReportOptions& options, Report& report, std::string& unreadablePath) {
  Report read;
  read.input.title = options.title.empty()
                         ? std::filesystem::path(options.logPath).filename().string()
                         : options.title;
  read.input.skipFirst = options.statistics.skipFirst;
  RunStatistics base; // only its comparison is drawn, so it needs no figures of its own
  if (options.basePath) {
    if (!readRunStatistics(*options.basePath, options.statistics, base)) {
      unreadablePath = *options.basePath;
      return false;
    }
    read.logs.push_back({*options.basePath, formatCreated(base.createdUs)});
  }
  RunStatistics next;
  if (!readRunFigures(options.logPath, options.statistics, next, read.input.run)) {
    unreadablePath = options.logPath;
    return false;
  }
  read.logs.push_back({options.logPath, formatCreated(next.createdUs)});
  if (options.basePath) {
    read.input.comparison = figurePageComparison(base, next, options.comparison);
    read.input.comparison->basePath = *options.basePath;
    read.input.comparison->newPath = options.logPath;
  }
  report = std::move(read);
  return true;
}

bool writeReportFile(const std::string& path, const Report& report) {
  std::ostringstream data;
  writeReportData(data, report.input);
  return writeWholeFile(path, [&](std::ostream& out) {
    writeReportPage(out, report.input.title, report.logs, data.str());
  });
}

} // namespace kvt::profiling
