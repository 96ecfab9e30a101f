// Small text pieces the statistics reports share: JSON strings and numbers and CSV fields.
#pragma once

#include "log/ParseDriver.h"
#include "statistics/SeriesSummary.h"

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace kvt::profiling {

// text as a JSON string, quoted, with quotes, backslashes and control characters escaped.
void writeJsonString(std::ostream& out, std::string_view text);

// How far a partial read came, on one line: {"chunksRead": N, "bytesRead": N, "reason": "chunk 2
// at offset 416 is cut short: ..."}, or null when the read was whole.
void writePartialJson(std::ostream& out, const std::optional<LogReadResult>& partial);

// A double with three decimals, "2500.333"; "null" when there is none.
std::string formatFixed(std::optional<double> value, int decimals = 3);

// A figure to four significant digits, "0.0123" or "1.234e-09" (tiny p-values need them); "null"
// when there is none or it is not finite.
std::string formatSignificant(std::optional<double> value);

// A finite figure with decimals decimals, else "null": JSON has no NaN. A figure that rounds to
// zero is "0.000", never "-0.000".
std::string formatFinite(std::optional<double> value, int decimals = 3);

// A number or "null".
std::string formatOptional(std::optional<uint64_t> value);

// {"count": N, "mean": ..., "stddev": ..., "min": ..., "p50": ..., "p90": ..., "p99": ...,
// "max": ..., "first": ...} on one line; every figure but count and first is null when count
// is 0.
void writeSummaryJson(std::ostream& out, const SeriesSummary& summary);

// text as a CSV field: quoted, with quotes doubled, when it holds a comma, quote or line break.
std::string formatCsvField(std::string_view text);

} // namespace kvt::profiling
