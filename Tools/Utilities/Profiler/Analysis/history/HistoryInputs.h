// The runs of a history from the files named on a command line: logs, stats JSON documents, and
// list files of either.
#pragma once

#include "RunSeriesFigures.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kvt::profiling {

// A run that could not be read or listed: its file and why.
struct HistoryInputError {
  std::string path;
  std::string problem;
};

// The paths with every "@FILE" replaced by the lines of FILE, one path a line (blank lines and
// lines opening with '#' skipped, a relative path taken from FILE's folder). An error names the
// list file that cannot be read.
std::optional<HistoryInputError> expandRunLists(const std::vector<std::string>& arguments,
                                                std::vector<std::string>& paths);

struct HistoryReadOptions {
  HistoryFigure figure = HistoryFigure::p50;
  uint64_t skipFirst = 0; // of each graph of a log; a stats document has its own
  uint32_t threads = 1;   // logs read at once
};

// Reads each path, a log or (when its first character other than white space is '{') a stats
// document, into runs, in the order of paths. Logs are read threads at a time, each reduced to
// its figures as soon as it is read. The error is the first path in order that fails; the
// reader's own reasons go to the log facility.
std::optional<HistoryInputError> readHistoryRuns(const std::vector<std::string>& paths,
                                                 const HistoryReadOptions& options,
                                                 std::vector<RunSeriesFigures>& runs);

} // namespace kvt::profiling
