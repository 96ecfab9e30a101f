// The runs of a history as `history` and `report --history` take them: their options on the
// command line, and the history built from the files named.
#pragma once

#include "history/RunHistory.h"
#include "reports/HistoryReport.h"

#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}

namespace kvt::profiling {

inline constexpr int exitSlowerInGate = 3; // a recent run got slower: the gate of CI scripts

struct HistoryRunOptions {
  std::vector<std::string> runs; // logs, stats JSON and @lists, oldest first
  std::string order = "given";
  std::string figure = "p50";
  uint64_t skipFirst = 0;
  HistoryOptions history;
};

// Adds --order, --figure, --min-runs and --gate to command (the caller adds the runs, --skip-first
// and the comparison options, which it may share with other uses).
void addHistoryRunOptions(CLI::App& command, HistoryRunOptions& options);

// How the values of options' history are taken, for its reports to say.
HistoryReportOptions historyReportOptions(const HistoryRunOptions& options);

// The history of options.runs; none, after a line on err opening with command, when a run or list
// cannot be read, cannot be ordered or shares no series with the others.
std::optional<History> readHistory(const HistoryRunOptions& options, std::string_view command,
                                   std::ostream& err);

} // namespace kvt::profiling
