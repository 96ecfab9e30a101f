// The shared text pieces of the statistics reports. Doubles go through to_chars, which does not
// depend on the locale.
#include "ReportText.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace kvt::profiling {

void writeJsonString(std::ostream& out, std::string_view text) {
  out << '"';
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out << '\\' << c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
      out << escaped;
    } else {
      out << c;
    }
  }
  out << '"';
}

void writePartialJson(std::ostream& out, const std::optional<LogReadResult>& partial) {
  if (!partial || !partial->fault) {
    out << "null";
    return;
  }
  out << "{\"chunksRead\": " << partial->chunksRead << ", \"bytesRead\": " << partial->bytesRead
      << ", \"reason\": ";
  writeJsonString(out, describeLogFaultWithoutPath(*partial->fault));
  out << '}';
}

std::string formatFixed(std::optional<double> value, int decimals) {
  if (!value)
    return "null";
  char text[64];
  const auto result =
      std::to_chars(text, text + sizeof text, *value, std::chars_format::fixed, decimals);
  return std::string(text, result.ptr);
}

std::string formatSignificant(std::optional<double> value) {
  if (!value || !std::isfinite(*value))
    return "null";
  char text[64];
  const auto result =
      std::to_chars(text, text + sizeof text, *value, std::chars_format::general, 4);
  return std::string(text, result.ptr);
}

// "-0.000" would read as a change downwards.
std::string formatFinite(std::optional<double> value, int decimals) {
  std::string text = formatFixed(value && std::isfinite(*value) ? value : std::nullopt, decimals);
  if (text.front() == '-' && text.find_first_not_of("-0.") == std::string::npos)
    text.erase(0, 1);
  return text;
}

std::string formatOptional(std::optional<uint64_t> value) {
  return value ? std::to_string(*value) : "null";
}

void writeSummaryJson(std::ostream& out, const SeriesSummary& summary) {
  const bool any = summary.count > 0;
  auto figure = [any](uint64_t value) {
    return formatOptional(any ? std::optional(value) : std::nullopt);
  };
  auto real = [any](double value) {
    return formatFixed(any ? std::optional(value) : std::nullopt);
  };
  out << "{\"count\": " << summary.count << ", \"mean\": " << real(summary.mean)
      << ", \"stddev\": " << real(summary.stddev) << ", \"min\": " << figure(summary.min)
      << ", \"p50\": " << figure(summary.p50) << ", \"p90\": " << figure(summary.p90)
      << ", \"p99\": " << figure(summary.p99) << ", \"max\": " << figure(summary.max)
      << ", \"first\": " << formatOptional(summary.first) << '}';
}

std::string formatCsvField(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos)
    return std::string(text);
  std::string quoted = "\"";
  for (const char c : text) {
    quoted += c;
    if (c == '"')
      quoted += '"';
  }
  return quoted + '"';
}

} // namespace kvt::profiling
