// The data a report page carries: JSON with every figure it draws, stamped with its schema
// version, written so that it can sit inside the page's <script type="application/json">.
#pragma once

#include "PageComparison.h"
#include "RunFigures.h"
#include "reports/HistoryReport.h"

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

namespace kvt::profiling {

inline constexpr int reportDataSchema = 3;      // raised whenever the data's keys change meaning
inline constexpr const char* reportUnit = "us"; // the unit the reader shows a log's values in

// A history of runs as its page shows it: the history and how its values were taken.
struct PageHistory {
  History history;
  HistoryReportOptions options;
};

struct ReportInput {
  std::string title;
  uint64_t skipFirst = 0;
  RunFigures run;                           // the run reported; with a base, the new one
  std::optional<PageComparison> comparison; // with a base
  std::optional<PageHistory> history;       // a history's page, which has no run of its own
};

// {"schema": 3, "title": ..., "unit": "us", "skipFirst": N, "run": {"log": ..., "graphs": [{...,
// "series": [...]}]}, "comparison": ..., "history": ...}, one series a line; a run read partially
// has "partial": {"chunksRead", "bytesRead", "reason"} after its log, and a base read partially
// "basePartial" after the comparison's "base"; a series' points carry the "gaps" between the
// indexes of the values kept (the first from 0), or null when none was thinned out. The comparison,
// null without a base, is {"base", "new", "alpha", "threshold", "minChange", "relative", "graphs",
// "totals", "rows"}, one row a line, each with its verdict, both sides' count and p50,
// "changePercent", "interval", "margin" (percent), "pAdjusted", "needed" ({"base", "new"} or null)
// and "overlay" (both runs' counts on shared bins, {"scale", "low", "high" or "width", "base",
// "new"}, or null). A history's page has "run" and "comparison" null and its "history" is the
// document of `history --format json`; other pages' "history" is null. No blank follows a colon or
// a comma outside strings. Every '<' is written as \u003c, so that no text from a log can close the
// script element the data sits in.
void writeReportData(std::ostream& out, const ReportInput& input);

} // namespace kvt::profiling
