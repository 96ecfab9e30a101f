// `kvt-profile-log report LOG -o report.html` on the command line; the report itself is the
// report library's.
#include "CommandLine.h"
#include "ComparisonFlags.h"
#include "HistoryRuns.h"
#include "LogReadReport.h"
#include "ReaderReports.h"
#include "ReportBuild.h"
#include "StatsCommand.h"
#include "ToolCommands.h"

#include <memory>

namespace kvt::profiling {

namespace {

struct ReportCommandOptions {
  ReportOptions report;
  HistoryRunOptions history; // its runs, when the page is a history's
  std::string outputPath;
  bool dataOnly = false;
};

// Writes report's page, or its data to the console.
int writeReport(const ReportCommandOptions& options, const Report& report, ToolConsole& console) {
  if (options.dataOnly) {
    writeReportData(console.out, report.input);
    return exitSuccess;
  }
  std::string failure;
  if (!writeReportFile(options.outputPath, report, failure)) {
    console.err << "kvt-profile-log report: cannot write " << options.outputPath << ": " << failure
                << '\n';
    return exitBadInput;
  }
  return exitSuccess;
}

// The history's options that the report shares with its other pages are taken from those.
int runHistoryReport(ReportCommandOptions options, ToolConsole& console) {
  options.history.skipFirst = options.report.statistics.skipFirst;
  options.history.history.comparison = options.report.comparison;
  std::optional<History> history =
      readHistory(options.history, "kvt-profile-log report", console.err);
  if (!history)
    return exitBadInput;
  const bool slowerInGate = history->totals.slowerInGate != 0;
  const Report report = buildHistoryReport(
      options.report.title, {std::move(*history), historyReportOptions(options.history)});
  const int written = writeReport(options, report, console);
  return written == exitSuccess && slowerInGate ? exitSlowerInGate : written;
}

int runReport(const ReportCommandOptions& options, ToolConsole& console) {
  if (!options.history.runs.empty())
    return runHistoryReport(options, console);
  Report report;
  {
    const ReaderReports reports;
    const std::vector<LogReadResult> reads = readReport(options.report, report);
    const bool partial = options.report.statistics.partial;
    for (size_t i = 0; i < reads.size(); ++i) {
      const bool isBase = options.report.basePath && i == 0;
      if (!reportLogRead(console.err, "kvt-profile-log report", reads[i], partial,
                         options.report.basePath ? (isBase ? "base log" : "log") : ""))
        return exitBadInput;
    }
  }
  return writeReport(options, report, console);
}

} // namespace

void addReportCommand(CLI::App& tool, CommandRun& run) {
  CLI::App* command = tool.add_subcommand(
      "report", "writes one offline HTML page with each step's distribution and the comparison");
  command->footer(
      "The page needs nothing but a browser: its script, style and data are inside it, and it\n"
      "loads nothing from anywhere. Per graph: the executions, the duration's percentiles and\n"
      "how much of it the steps explain; a table of the steps, each with a box plot of its\n"
      "spans (box p25 to p75, whiskers p1 to p99, a dot at the max) on one logarithmic axis;\n"
      "per step its histogram and its values in execution order (at most 2000 points, the\n"
      "extremes of equal runs kept). With --base, the comparison of kvt-profile-log compare\n"
      "(its verdicts, each series' change with its interval against the threshold's band,\n"
      "each graph's run-wide shift) and, per series, both runs' histograms overlaid.\n"
      "The page is written beside OUT and renamed into place. With --partial, a run read\n"
      "partially says so in the page's data (its \"partial\": chunks and bytes read, and why\n"
      "the rest was dropped).\n"
      "With --history RUN... instead of LOG, the page of kvt-profile-log history: its series\n"
      "by their latest change, each with its values per run and its changes marked, and per\n"
      "series its chart; it takes history's options, and exits 3 like it.\n" +
      std::string(statisticsMemoryNote) +
      " With --base, both runs' values are kept at once.\n"
      "Exit status: 0 done, 1 unreadable log or unwritable output, 2 wrong command line.");
  const auto options = std::make_shared<ReportCommandOptions>();
  CLI::Option* log =
      command->add_option("LOG", options->report.logPath, "the log to report")->check(nonEmpty());
  CLI::Option* runs = command
                          ->add_option("--history", options->history.runs,
                                       "the runs of a history to report instead, oldest first:\n"
                                       "logs, stats JSON, @lists")
                          ->option_text("RUN...")
                          ->check(nonEmpty())
                          ->excludes(log);
  command->add_option("--base", options->report.basePath, "the log of a base run to compare with")
      ->option_text("BASE")
      ->check(nonEmpty())
      ->excludes(runs);
  CLI::Option* output =
      command->add_option("-o", options->outputPath, "the page to write")->option_text("OUT");
  output->check(nonEmpty());
  command
      ->add_flag("--data", options->dataOnly,
                 "print the page's data, JSON, instead of writing a page")
      ->excludes(output);
  command
      ->add_option("--skip-first", options->report.statistics.skipFirst,
                   "leave each graph's first N executions out of every figure\n"
                   "but first and the execution plot")
      ->option_text("N")
      ->check(wholeNumber<uint64_t>(0, UINT64_MAX));
  addComparisonOptions(*command, options->report.comparison);
  command->add_option("--title", options->report.title, "the page's title (default: LOG's name)")
      ->option_text("TEXT");
  addPartialFlag(*command, options->report.statistics.partial);
  addHistoryRunOptions(*command, options->history);
  command->callback([options, &run] {
    if (options->report.logPath.empty() && options->history.runs.empty())
      throw CLI::RequiredError("LOG or --history");
    if (!options->dataOnly && options->outputPath.empty())
      throw CLI::RequiredError("-o");
    run.exitCode = runReport(*options, run.console);
  });
}

} // namespace kvt::profiling
