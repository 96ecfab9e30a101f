// The data a report page carries: JSON with every figure it draws, stamped with its schema
// version, written so that it can sit inside the page's <script type="application/json">.
#pragma once

#include "ComparisonFigures.h"
#include "RunFigures.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace kvt::profiling {

inline constexpr int reportDataSchema = 1; // raised whenever the data's keys change meaning

struct ReportInput {
  std::string title;
  uint64_t skipFirst = 0;
  std::vector<RunFigures> runs;                // the run reported; with a base, the base first
  std::optional<ComparisonFigures> comparison; // with a base
};

// {"schema": 1, "title": ..., "skipFirst": N, "runs": [{"log": ..., "graphs": [{..., "series":
// [...]}]}], "comparison": ..., "overlays": [...]}, one series a line; a run read partially has
// "partial": {"chunksRead", "bytesRead", "reason"} after its log; a series' points carry
// "index": null when none was thinned out. The comparison is the JSON of kvt-profile-log compare
// and overlays holds each of its rows' overlaid histograms; both are null without a base.
// Every '<' is written as \u003c, so that no text from a log can close the script element the data
// sits in.
void writeReportData(std::ostream& out, const ReportInput& input);

} // namespace kvt::profiling
