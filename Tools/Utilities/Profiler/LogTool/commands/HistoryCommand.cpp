// `kvt-profile-log history RUN...` on the command line; the history itself is the analysis
// library's.
#include "CommandLine.h"
#include "CommandOutput.h"
#include "ComparisonFlags.h"
#include "HistoryRuns.h"
#include "ToolCommands.h"

#include <memory>
#include <sstream>

namespace kvt::profiling {

namespace {

struct HistoryCommandOptions {
  HistoryRunOptions runs;
  std::string format = "table";
  std::string outputPath;
};

int runHistory(const HistoryCommandOptions& options, ToolConsole& console) {
  const std::optional<History> history =
      readHistory(options.runs, "kvt-profile-log history", console.err);
  if (!history)
    return exitBadInput;
  std::ostringstream text;
  if (options.format == "json")
    writeHistoryJson(text, *history, historyReportOptions(options.runs));
  else if (options.format == "csv")
    writeHistoryCsv(text, *history);
  else
    writeHistoryTable(text, *history);
  if (!writeCommandOutput(console, "kvt-profile-log history", options.outputPath, text.str()))
    return exitBadInput;
  return history->totals.slowerInGate ? exitSlowerInGate : exitSuccess;
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
  command->add_option("RUN", options->runs.runs, "the runs, oldest first: logs, stats JSON, @lists")
      ->required()
      ->check(nonEmpty());
  command
      ->add_option("--skip-first", options->runs.skipFirst,
                   "leave each graph's first N executions out of each log")
      ->option_text("N")
      ->check(wholeNumber<uint64_t>(0, UINT64_MAX));
  addComparisonOptions(*command, options->runs.history.comparison);
  addHistoryRunOptions(*command, options->runs);
  command->add_option("--format", options->format, "table (default), json or csv")
      ->option_text("table|json|csv")
      ->check(CLI::IsMember({"table", "json", "csv"}));
  command->add_option("-o", options->outputPath, "the file to write instead of the standard output")
      ->option_text("FILE")
      ->check(nonEmpty());
  command->callback([options, &run] { run.exitCode = runHistory(*options, run.console); });
}

} // namespace kvt::profiling
