// The long table of executions as text, CSV or JSON lines, one row per value with the log's path
// as a column, so that the files of many logs concatenate into one table.
#pragma once

#include "ExecutionRows.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kvt::profiling {

enum class ExecutionTextFormat { csv, jsonl };

// Formats rows into a text buffer the caller drains. Columns: log, graph, execution, series,
// parent, name, occurrence, value. In CSV a missing parent or occurrence is an empty field, in
// JSON lines null. Example (CSV):
//   log,graph,execution,series,parent,name,occurrence,value
//   run.log,model,0,duration,,duration,,1500
//   run.log,model,0,span,execute,Conv,0,100
class ExecutionTextWriter {
public:
  ExecutionTextWriter(ExecutionTextFormat format, std::string logPath)
      : format(format), logPath(std::move(logPath)) {}

  // The CSV header line; nothing for JSON lines, whose rows name their fields.
  void appendHeader(std::string& out) const;
  void appendRows(const ExecutionRows& rows, const ExecutionKeys& keys, std::string& out);

private:
  // The text of a row around its execution and value, made once per series.
  struct SeriesText {
    std::string beforeExecution;
    std::string afterExecution;
  };
  SeriesText formatSeries(const SeriesKey& key) const;

  ExecutionTextFormat format;
  std::string logPath;
  std::vector<SeriesText> seriesText; // by series index
};

struct ExecutionTextResult {
  LogReadResult read;  // how far the log was read
  bool written = true; // false once write returned false
};

// Reads the log at logPath and hands the text of its rows to write as they are read, the CSV
// header first, in blocks of about 1 MiB. When the read stops at a bad chunk (read incomplete,
// with the reader's report to the log facility), the rows of every whole chunk before it have
// still been handed to write; a path that is no log gives no text at all. Once write returned
// false, nothing more is handed to it.
ExecutionTextResult writeExecutionText(const std::string& logPath,
                                       const ExecutionRowOptions& options,
                                       ExecutionTextFormat format,
                                       const std::function<bool(std::string_view)>& write);

} // namespace kvt::profiling
