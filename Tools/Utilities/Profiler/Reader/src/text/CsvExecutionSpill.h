// The EXECUTE rows of the CSV event log, formatted as each execution is dispatched and kept in
// one unnamed temporary file per graph, so that a reader's memory does not grow with the log.
#pragma once

#include "ReportContext.h"
#include "model/ExecutionEntry.h"
#include "model/ExecutionSeam.h"
#include "model/GraphMap.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>

namespace kvt::profiling {

class CsvExecutionSpill {
public:
  // Back-end rows are formatted by writeBackendRows, which a reader variant may replace.
  explicit CsvExecutionSpill(BackendCsvWriter writeBackendRows);

  // Appends the execution's EXECUTE row and back-end rows to its graph's file. Graphs are
  // numbered from 0 in the order of their first execution. Once a file could not be created or
  // written, nothing more is kept.
  void add(const DispatchedExecution& execution);

  // Flushes the files: false, with the reason in failure(), when that or anything before failed.
  bool flush();
  // Flushes, then writes every graph's rows to out, graph after graph; may be called again with
  // the same result. False when flush() is, or a file cannot be read back (out then holds part
  // of the rows).
  bool copyTo(std::ostream& out);
  const std::string& failure() const { return failureText; }

private:
  struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  struct GraphFile {
    std::unique_ptr<std::FILE, FileCloser> file;
    uint64_t bytes = 0;     // written so far
    std::string identifier; // "Graph 0: g"
  };

  bool fail(const char* what);
  bool copyFile(GraphFile& graph, std::ostream& out);

  BackendCsvWriter writeBackendRows;
  GraphMap<GraphFile> fileByGraph;
  ExecutionEntry entry;    // one execution's records, reused
  std::ostringstream rows; // and its rows
  std::string failureText;
};

} // namespace kvt::profiling
