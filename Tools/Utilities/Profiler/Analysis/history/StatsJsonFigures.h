// Reads the JSON document `stats --format json` writes back into one figure per series, so that
// a history can keep a few kilobytes per run instead of its log.
#pragma once

#include "RunSeriesFigures.h"

#include <string>
#include <string_view>

namespace kvt::profiling {

// Parses text, a stats document, into figures (source stays as given; createdUs none, since the
// document has no creation time). False, with the reason in problem, when text is no JSON or
// lacks a key this version writes: {"log", "skipFirst", "graphs": [{"name", "executions",
// "duration", "queueWait", "backend", "steps"}]} with the summaries' count, mean, p50 and p90.
bool parseStatsJsonFigures(std::string_view text, HistoryFigure figure, RunSeriesFigures& figures,
                           std::string& problem);

} // namespace kvt::profiling
