// Small text pieces the statistics reports share: JSON strings and numbers and CSV fields.
#pragma once

#include "statistics/SeriesSummary.h"

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace kvt::profiling {

// text as a JSON string, quoted, with quotes, backslashes and control characters escaped.
void writeJsonString(std::ostream& out, std::string_view text);

// A double with three decimals, "2500.333"; "null" when there is none.
std::string formatFixed(std::optional<double> value, int decimals = 3);

// A number or "null".
std::string formatOptional(std::optional<uint64_t> value);

// {"count": N, "mean": ..., "stddev": ..., "min": ..., "p50": ..., "p90": ..., "p99": ...,
// "max": ..., "first": ...} on one line; every figure but count and first is null when count
// is 0.
void writeSummaryJson(std::ostream& out, const SeriesSummary& summary);

// text as a CSV field: quoted, with quotes doubled, when it holds a comma, quote or line break.
std::string formatCsvField(std::string_view text);

} // namespace kvt::profiling
