// The long table of executions as columns, for a data frame: text as codes into lists of
// categories, numbers as they are, gathered as the log is read.
#pragma once

#include "ChunkedColumn.h"
#include "ExecutionRows.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace kvt::profiling {

// One entry per row in every column, rows in the order ExecutionRows lists them. A code is an
// index into its list of categories; noCode marks a missing parent, noOccurrence a missing
// occurrence.
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

  size_t rows() const { return value.size(); }
};

// Appends rows to columns, turning each series' text into codes once.
class ExecutionColumnBuilder {
public:
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
  uint32_t findCode(std::unordered_map<std::string, uint32_t>& codes,
                    std::vector<std::string>& categories, const std::string& text);

  ExecutionColumns columns;
  std::vector<SeriesCodes> seriesCodes; // by series index
  std::unordered_map<std::string, uint32_t> parentCodes;
  std::unordered_map<std::string, uint32_t> nameCodes;
};

// Reads the log at path into columns (see readExecutionRows). Incomplete when the file is no log
// or a chunk is bad, with the fault and the reader's report to the log facility; columns is then
// left as it was, unless partial and the fault is a bad chunk: then columns holds the rows of the
// whole chunks before it. Memory: one chunk and 37 bytes per row.
LogReadResult readExecutionColumns(const std::string& path, const ExecutionRowOptions& options,
                                   bool partial, ExecutionColumns& columns);

} // namespace kvt::profiling
