// The long table of executions as columns, for a data frame: text as codes into lists of
// categories, numbers as they are, gathered as the logs are read.
#pragma once

#include "ChunkedColumn.h"
#include "ExecutionRows.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace kvt::profiling {

// A value that a signed 64-bit column cannot hold, and where it is.
struct OversizedValue {
  size_t log = 0; // the log's position among those read
  SeriesKey series;
  uint64_t execution = 0;
  uint64_t value = 0; // above INT64_MAX
};

// One entry per row in every column, rows log after log, each log's in the order ExecutionRows
// lists them. A code is an index into its list of categories, which the logs share; noCode marks
// a missing parent, noOccurrence a missing occurrence.
struct ExecutionColumns {
  static constexpr int32_t noCode = -1;
  static constexpr uint64_t noOccurrence = UINT64_MAX; // no execution holds 2^64 records

  std::vector<std::string> graphs;  // the graph column's categories, in order of appearance
  std::vector<std::string> parents; // the parent column's
  std::vector<std::string> names;   // the name column's
  ChunkedColumn<uint32_t> graph;
  ChunkedColumn<uint64_t> execution;
  ChunkedColumn<uint8_t> series; // a SeriesKind; its categories are seriesKindName's, in order
  ChunkedColumn<int32_t> parent;
  ChunkedColumn<uint32_t> name;
  ChunkedColumn<uint64_t> occurrence;
  ChunkedColumn<uint64_t> value;
  std::vector<size_t> rowsByLog;                // the rows of each log, in the order read
  std::optional<OversizedValue> firstOversized; // the first value above INT64_MAX, if any

  size_t rows() const { return value.size(); }
};

// Appends rows to columns, turning each series' text into codes once.
class ExecutionColumnBuilder {
public:
  // Starts the rows of the next log; its graph and series indexes are its own.
  void startLog();
  void append(const ExecutionRows& rows, const ExecutionKeys& keys);
  // Consumes the builder.
  ExecutionColumns take() && { return std::move(columns); }

private:
  struct SeriesCodes {
    uint8_t kind = 0;
    int32_t parent = ExecutionColumns::noCode;
    uint32_t name = 0;
    uint64_t occurrence = ExecutionColumns::noOccurrence;
  };
  using CodeMap = std::unordered_map<std::string, uint32_t>;
  uint32_t findCode(CodeMap& codes, std::vector<std::string>& categories, const std::string& text);
  void noteOversized(const ExecutionRows& rows, const ExecutionKeys& keys);

  ExecutionColumns columns;
  std::vector<uint32_t> graphCodes;     // the current log's, by graph index
  std::vector<SeriesCodes> seriesCodes; // the current log's, by series index
  CodeMap graphCodeByName;
  CodeMap parentCodeByName;
  CodeMap nameCodeByName;
};

// Reads the log at path and appends its rows to builder as a log of their own (see
// readExecutionRows). Incomplete when the file is no log or a chunk is bad, with the fault and
// the reader's report to the log facility; builder then holds the rows of the whole chunks before
// a bad one, which stand only when the caller allows a partial read. Memory: one chunk and 37
// bytes per row.
LogReadResult readExecutionColumns(const std::string& path, const ExecutionRowOptions& options,
                                   ExecutionColumnBuilder& builder);

} // namespace kvt::profiling
