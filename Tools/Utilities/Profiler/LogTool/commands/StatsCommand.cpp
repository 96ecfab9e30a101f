// `kvt-profile-log stats LOG` on the command line; the statistics themselves are the analysis
// library's.
#include "StatsCommand.h"

#include "CommandLine.h"
#include "CommandOutput.h"
#include "LogReadReport.h"
#include "ReaderReports.h"
#include "ToolCommands.h"
#include "reports/StatsReport.h"
#include "statistics/StatisticsPass.h"

#include <memory>
#include <sstream>

namespace kvt::profiling {

namespace {

struct StatsCommandOptions {
  std::string logPath;
  int visibility = int(VisibilityLevel::keepAll);
  uint64_t skipFirst = 0;
  std::string format = "table";
  std::string sort = "share";
  std::optional<size_t> top;
  std::optional<std::string> graph;
  bool partial = false;
  std::string outputPath;
};

StepOrder readStepOrder(const std::string& sort) {
  return sort == "name" ? StepOrder::name : sort == "order" ? StepOrder::order : StepOrder::share;
}

int runStats(const StatsCommandOptions& options, ToolConsole& console) {
  StatisticsOptions pass;
  pass.visibilityLevel = VisibilityLevel(options.visibility);
  pass.skipFirst = options.skipFirst;
  pass.graph = options.graph;
  pass.partial = options.partial;
  RunStatistics run;
  const ReaderReports reports;
  if (!reportLogRead(console.err, "kvt-profile-log stats",
                     readRunStatistics(options.logPath, pass, run), options.partial))
    return exitBadInput;
  std::ostringstream text;
  if (options.format == "json")
    writeStatsJson(text, run, options.logPath, options.skipFirst);
  else if (options.format == "csv")
    writeStatsCsv(text, run);
  else
    writeStatsTable(text, run, {readStepOrder(options.sort), options.top});
  return writeCommandOutput(console, "kvt-profile-log stats", options.outputPath, text.str())
             ? exitSuccess
             : exitBadInput;
}

} // namespace

void addStatsCommand(CLI::App& tool, CommandRun& run) {
  CLI::App* command =
      tool.add_subcommand("stats", "prints each graph's statistics: percentiles per step");
  command->footer(
      "For each graph, over its executions: the duration, the queue wait, each top-level\n"
      "back-end record and each execution step's span and wait, with count, mean, stddev\n"
      "(population), min, nearest-rank p50/p90/p99 (the value at rank ceil(p/100 x n) of the\n"
      "sorted values), max and first (the cold first execution, even when skipped).\n"
      "The table has a row per step: share % is its mean span over the sum of all steps' mean\n"
      "spans, cum % the running sum of share down the rows, and the last column the spread of\n"
      "its spans from min to max.\n" +
      std::string(statisticsMemoryNote) +
      "\nExit status: 0 done, 1 unreadable log or unwritable output, 2 wrong command line.");
  const auto options = std::make_shared<StatsCommandOptions>();
  command->add_option("LOG", options->logPath, "the log to read")->required()->check(nonEmpty());
  command
      ->add_option("--visibility", options->visibility,
                   "keep messages whose level is below N (default 127)")
      ->option_text("N")
      ->check(wholeNumber<int>(-128, 127));
  command
      ->add_option("--skip-first", options->skipFirst,
                   "leave each graph's first N executions out of every figure\n"
                   "but first")
      ->option_text("N")
      ->check(wholeNumber<uint64_t>(0, UINT64_MAX));
  command->add_option("--format", options->format, "table (default), csv or json")
      ->option_text("table|csv|json")
      ->check(CLI::IsMember({"table", "csv", "json"}));
  command->add_option("--sort", options->sort, "table rows by share (default), order or name")
      ->option_text("share|order|name")
      ->check(CLI::IsMember({"share", "order", "name"}));
  command->add_option("--top", options->top, "keep the first K table rows of each graph")
      ->option_text("K")
      ->check(wholeNumber<size_t>(0, SIZE_MAX));
  command->add_option("--graph", options->graph, "report only the graph NAME")->option_text("NAME");
  addPartialFlag(*command, options->partial);
  command->add_option("-o", options->outputPath, "the file to write instead of the standard output")
      ->option_text("FILE")
      ->check(nonEmpty());
  command->callback([options, &run] { run.exitCode = runStats(*options, run.console); });
}

} // namespace kvt::profiling
