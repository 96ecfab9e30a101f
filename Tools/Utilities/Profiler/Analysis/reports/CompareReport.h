// The reports of kvt-profile-log compare: an aligned table, or one JSON document.
#pragma once

#include "comparison/RunComparison.h"

#include <ostream>
#include <string>

namespace kvt::profiling {

// One row per series, slower rows first, then faster, then the rest, each group in comparison
// order: verdict, graph, series, name, parent, occurrence, base count and p50, new count and
// p50, change %, p-value; then a line of totals. Figures that do not exist print as "-".
void writeComparisonTable(std::ostream& out, const Comparison& comparison);

// {"base": PATH, "new": PATH, "threshold": PCT, "rows": [...], "totals": {...}}, one row a line,
// rows in comparison order.
void writeComparisonJson(std::ostream& out, const Comparison& comparison,
                         const std::string& basePath, const std::string& newPath,
                         double thresholdPercent);

} // namespace kvt::profiling
