// Every series' text is made once, so a row costs two numbers and a few copies: the export keeps
// pace with the read.
#include "ExecutionText.h"

#include "reports/ReportText.h"

#include <charconv>
#include <sstream>

namespace kvt::profiling {

namespace {

constexpr size_t blockBytes = 1 << 20; // text is handed on in blocks of about this size

void appendNumber(std::string& out, uint64_t value) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  out.append(digits, end);
}

std::string formatJsonString(std::string_view text) {
  std::ostringstream out;
  writeJsonString(out, text);
  return out.str();
}

} // namespace

void ExecutionTextWriter::appendHeader(std::string& out) const {
  if (format == ExecutionTextFormat::csv)
    out += "log,graph,execution,series,parent,name,occurrence,value\n";
}

ExecutionTextWriter::SeriesText ExecutionTextWriter::formatSeries(const SeriesKey& key) const {
  const std::string& graph = key.graph;
  const std::string occurrence = key.occurrence ? std::to_string(*key.occurrence) : std::string();
  SeriesText text;
  if (format == ExecutionTextFormat::csv) {
    text.beforeExecution = formatCsvField(logPath) + ',' + formatCsvField(graph) + ',';
    text.afterExecution = ',' + std::string(seriesKindName(key.kind)) + ',' +
                          (key.parent ? formatCsvField(*key.parent) : "") + ',' +
                          formatCsvField(key.name) + ',' + occurrence + ',';
    return text;
  }
  text.beforeExecution = "{\"log\": " + formatJsonString(logPath) +
                         ", \"graph\": " + formatJsonString(graph) + ", \"execution\": ";
  text.afterExecution = ", \"series\": \"" + std::string(seriesKindName(key.kind)) +
                        "\", \"parent\": " + (key.parent ? formatJsonString(*key.parent) : "null") +
                        ", \"name\": " + formatJsonString(key.name) +
                        ", \"occurrence\": " + (key.occurrence ? occurrence : "null") +
                        ", \"value\": ";
  return text;
}

void ExecutionTextWriter::appendRows(const ExecutionRows& rows, const ExecutionKeys& keys,
                                     std::string& out) {
  while (seriesText.size() < keys.series.size())
    seriesText.push_back(formatSeries(keys.series[seriesText.size()]));
  const char* rowEnd = format == ExecutionTextFormat::csv ? "\n" : "}\n";
  for (const SeriesValue& value : rows.values) {
    const SeriesText& text = seriesText[value.series];
    out += text.beforeExecution;
    appendNumber(out, rows.execution);
    out += text.afterExecution;
    appendNumber(out, value.value);
    out += rowEnd;
  }
}

ExecutionTextResult writeExecutionText(const std::string& logPath,
                                       const ExecutionRowOptions& options,
                                       ExecutionTextFormat format,
                                       const std::function<bool(std::string_view)>& write) {
  ExecutionTextWriter writer(format, logPath);
  std::string text;
  writer.appendHeader(text);
  ExecutionTextResult result;
  result.read = readExecutionRows(logPath, options,
                                  [&](const ExecutionRows& rows, const ExecutionKeys& keys) {
                                    writer.appendRows(rows, keys, text);
                                    if (text.size() >= blockBytes) {
                                      result.written = result.written && write(text);
                                      text.clear();
                                    }
                                  });
  // The rows read before a bad chunk are written too: they are what a cut log still holds. A
  // path that is no log gives nothing, not even the header.
  if (result.read.complete() || !isNotALog(*result.read.fault))
    result.written = result.written && write(text);
  return result;
}

} // namespace kvt::profiling
