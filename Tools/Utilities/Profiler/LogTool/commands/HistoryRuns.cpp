// Both commands read a history through here, so that they accept the same runs and options and
// refuse the same inputs with the same words.
#include "HistoryRuns.h"

#include "CommandLine.h"
#include "ReaderReports.h"
#include "history/HistoryInputs.h"

#include <algorithm>
#include <thread>

namespace kvt::profiling {

namespace {

// CLI11 has already held --figure to the figures' names.
HistoryFigure readFigure(const std::string& name) {
  return findHistoryFigure(name).value_or(HistoryFigure::p50);
}

} // namespace

void addHistoryRunOptions(CLI::App& command, HistoryRunOptions& options) {
  command.add_option("--order", options.order, "runs as given (default) or by creation time")
      ->option_text("given|created")
      ->check(CLI::IsMember({"given", "created"}));
  command.add_option("--figure", options.figure, "each run's value: p50 (default), p90, mean")
      ->option_text("p50|p90|mean")
      ->check(CLI::IsMember({"p50", "p90", "mean"}));
  command
      .add_option("--min-runs", options.history.minRuns,
                  "runs on each side of a change at least (default 3)")
      ->option_text("K")
      ->check(wholeNumber<uint64_t>(1, UINT32_MAX));
  command
      .add_option("--gate", options.history.gate,
                  "exit 3 for a slower change within the last G runs (default 5)")
      ->option_text("G")
      ->check(wholeNumber<uint64_t>(0, UINT64_MAX));
}

HistoryReportOptions historyReportOptions(const HistoryRunOptions& options) {
  return {readFigure(options.figure), options.skipFirst};
}

std::optional<History> readHistory(const HistoryRunOptions& options, std::string_view command,
                                   std::ostream& err) {
  std::vector<std::string> paths;
  if (const auto error = expandRunLists(options.runs, paths)) {
    err << command << ": cannot read the list " << error->path << ": " << error->problem << '\n';
    return std::nullopt;
  }
  const ReaderReports reports;
  std::vector<RunSeriesFigures> runs;
  const HistoryReadOptions reading{readFigure(options.figure), options.skipFirst,
                                   std::max(1u, std::thread::hardware_concurrency())};
  if (const auto error = readHistoryRuns(paths, reading, runs)) {
    err << command << ": cannot read the run " << error->path << ": " << error->problem << '\n';
    return std::nullopt;
  }
  if (const auto problem = arrangeHistoryRuns(runs, options.order == "created")) {
    err << command << ": the run " << problem->source << ' ' << problem->problem << '\n';
    return std::nullopt;
  }
  return buildHistory(std::move(runs), options.history);
}

} // namespace kvt::profiling
