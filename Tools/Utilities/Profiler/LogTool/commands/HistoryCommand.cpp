// `kvt-profile-log history RUN...` on the command line; the history itself is the analysis
// library's.
#include "CommandLine.h"
#include "CommandOutput.h"
#include "ComparisonFlags.h"
#include "ReaderReports.h"
#include "ToolCommands.h"
#include "history/HistoryInputs.h"
#include "reports/HistoryReport.h"

#include <algorithm>
#include <memory>
#include <sstream>
#include <thread>

namespace kvt::profiling {

namespace {

constexpr int exitSlowerInGate = 3; // a recent run got slower: the regression gate of CI scripts

struct HistoryCommandOptions {
  std::vector<std::string> runs;
  std::string order = "given";
  std::string figure = "p50";
  uint64_t skipFirst = 0;
  HistoryOptions history;
  std::string format = "table";
  std::string outputPath;
};

HistoryFigure readFigure(const std::string& name) {
  return name == "p90"    ? HistoryFigure::p90
         : name == "mean" ? HistoryFigure::mean
                          : HistoryFigure::p50;
}

// Sorts runs by their logs' creation time; the first run without one is the error.
const RunSeriesFigures* orderByCreation(std::vector<RunSeriesFigures>& runs) {
  for (const RunSeriesFigures& run : runs)
    if (!run.createdUs)
      return &run;
  std::stable_sort(runs.begin(), runs.end(),
                   [](const RunSeriesFigures& a, const RunSeriesFigures& b) {
                     return *a.createdUs < *b.createdUs;
                   });
  return nullptr;
}

int runHistory(const HistoryCommandOptions& options, ToolConsole& console) {
  std::ostream& err = console.err;
  std::vector<std::string> paths;
  if (const auto error = expandRunLists(options.runs, paths)) {
    err << "kvt-profile-log history: cannot read the list " << error->path << ": " << error->problem
        << '\n';
    return exitBadInput;
  }
  const ReaderReports reports;
  std::vector<RunSeriesFigures> runs;
  const HistoryReadOptions reading{readFigure(options.figure), options.skipFirst,
                                   std::max(1u, std::thread::hardware_concurrency())};
  if (const auto error = readHistoryRuns(paths, reading, runs)) {
    err << "kvt-profile-log history: cannot read the run " << error->path << ": " << error->problem
        << '\n';
    return exitBadInput;
  }
  if (options.order == "created") {
    if (const RunSeriesFigures* undated = orderByCreation(runs)) {
      err << "kvt-profile-log history: the run " << undated->source
          << " has no creation time to order by (a stats JSON has none)\n";
      return exitBadInput;
    }
  }
  if (const std::optional<size_t> alone = findRunSharingNoSeries(runs)) {
    err << "kvt-profile-log history: the run " << runs[*alone].source
        << (runs[*alone].series.empty() ? " has no series: neither a log with executions nor a"
                                          " stats JSON with graphs\n"
                                        : " shares no series with the other runs\n");
    return exitBadInput;
  }
  const History history = buildHistory(std::move(runs), options.history);
  std::ostringstream text;
  if (options.format == "json")
    writeHistoryJson(text, history, {reading.figure, options.skipFirst});
  else if (options.format == "csv")
    writeHistoryCsv(text, history);
  else
    writeHistoryTable(text, history);
  if (!writeCommandOutput(console, "kvt-profile-log history", options.outputPath, text.str()))
    return exitBadInput;
  return history.totals.slowerInGate ? exitSlowerInGate : exitSuccess;
}

} // namespace

void addHistoryCommand(CLI::App& tool, CommandRun& run) {
  CLI::App* command = tool.add_subcommand(
      "history", "tells which steps changed, at which run, across a history of runs");
  command->footer(
      "A RUN is a log, the output of stats --format json for one, or @FILE, a list of them one\n"
      "a line (relative paths from FILE's folder). Each series becomes one value per run, its\n"
      "figure over the run's counted executions. Each series is split where a step fits its\n"
      "values best, or a stretch of runs that changed and came back, with at least --min-runs\n"
      "runs on each side (so a single spike is never a change); a rank-sum test of the two\n"
      "sides, its p-value times the candidates it could have chosen, is adjusted over every\n"
      "series of the history (Holm; BH q given), and a change is slower (faster) when that\n"
      "is below alpha and its shift (Hodges-Lehmann, over the run values) exceeds compare's\n"
      "margin. Each side is searched again. A graph's run-wide factor (the median of its step\n"
      "spans' log shifts) is searched the same way; --relative judges steps and back-end\n"
      "records divided by it. A series appearing or vanishing is added or removed.\n"
      "Memory: runs x series values; logs are read one per core.\n"
      "Exit status: 0 no slower change within the last --gate runs, 3 some, 1 unreadable run\n"
      "or output, runs without shared series, 2 wrong command line.");
  const auto options = std::make_shared<HistoryCommandOptions>();
  command->add_option("RUN", options->runs, "the runs, oldest first: logs, stats JSON, @lists")
      ->required()
      ->check(nonEmpty());
  command->add_option("--order", options->order, "runs as given (default) or by creation time")
      ->option_text("given|created")
      ->check(CLI::IsMember({"given", "created"}));
  command->add_option("--figure", options->figure, "each run's value: p50 (default), p90, mean")
      ->option_text("p50|p90|mean")
      ->check(CLI::IsMember({"p50", "p90", "mean"}));
  command
      ->add_option("--skip-first", options->skipFirst,
                   "leave each graph's first N executions out of each log")
      ->option_text("N")
      ->check(wholeNumber<uint64_t>(0, UINT64_MAX));
  addComparisonOptions(*command, options->history.comparison);
  command
      ->add_option("--min-runs", options->history.minRuns,
                   "runs on each side of a change at least (default 3)")
      ->option_text("K")
      ->check(wholeNumber<uint64_t>(1, UINT32_MAX));
  command
      ->add_option("--gate", options->history.gate,
                   "exit 3 for a slower change within the last G runs (default 5)")
      ->option_text("G")
      ->check(wholeNumber<uint64_t>(0, UINT64_MAX));
  command->add_option("--format", options->format, "table (default), json or csv")
      ->option_text("table|json|csv")
      ->check(CLI::IsMember({"table", "json", "csv"}));
  command->add_option("-o", options->outputPath, "the file to write instead of the standard output")
      ->option_text("FILE")
      ->check(nonEmpty());
  command->callback([options, &run] { run.exitCode = runHistory(*options, run.console); });
}

} // namespace kvt::profiling
