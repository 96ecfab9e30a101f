// The report page: the HTML shell of web/ with its style, its script and the report's data
// inline, and a Content-Security-Policy that lets the page load nothing from anywhere.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace kvt::profiling {

// What the page shows that is not in its data: each log it reports with its date.
struct PageLog {
  std::string path;
  std::string created; // "2026-11-25 07:30 UTC", or empty when the log has no header
};

// text with &, <, >, " and ' as HTML character references.
std::string escapeHtml(std::string_view text);

// Writes the page around data, which writeReportData wrote. Two logs are joined by pairJoin
// (" against " for a comparison, " to " for the first and last run of a history), more by ", ".
void writeReportPage(std::ostream& out, std::string_view title, const std::vector<PageLog>& logs,
                     std::string_view pairJoin, std::string_view data);

} // namespace kvt::profiling
