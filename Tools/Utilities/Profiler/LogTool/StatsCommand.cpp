// The stats command's options and output; the statistics themselves are the analysis library's.
#include "StatsCommand.h"

#include "StatisticsPass.h"
#include "StatsReport.h"

#include <map>
#include <memory>

namespace kvt::profiling {

namespace {

struct StatsCommandOptions {
  std::string logPath;
  int visibility = int(VisibilityLevel::keepAll);
  uint64_t skipFirst = 0;
  std::string format = "table";
  StepOrder order = StepOrder::share;
  std::optional<size_t> top;
  std::optional<std::string> graph;
};

int runStats(const StatsCommandOptions& options, ToolConsole& console) {
  StatisticsOptions pass;
  pass.visibilityLevel = VisibilityLevel(options.visibility);
  pass.skipFirst = options.skipFirst;
  pass.graph = options.graph;
  RunStatistics run;
  if (!readRunStatistics(options.logPath, pass, run)) {
    console.err << "kvt-profile-log stats: cannot read the log " << options.logPath << '\n';
    return exitBadInput;
  }
  if (options.format == "json")
    writeStatsJson(console.out, run, options.logPath, options.skipFirst);
  else if (options.format == "csv")
    writeStatsCsv(console.out, run);
  else
    writeStatsTable(console.out, run, {options.order, options.top});
  return exitSuccess;
}

} // namespace

void addStatsCommand(CLI::App& app, ToolConsole& console, int& exitCode) {
  auto options = std::make_shared<StatsCommandOptions>();
  CLI::App* command = app.add_subcommand(
      "stats", "Prints the statistics of every graph's executions: duration, queue wait, each "
               "back-end record and each step's span and wait, with nearest-rank percentiles.");
  command->add_option("LOG", options->logPath, "the log to read")->required();
  command
      ->add_option("--visibility", options->visibility,
                   "keep messages whose level is below N (default 127)")
      ->check(CLI::Range(-128, 127));
  command
      ->add_option("--skip-first", options->skipFirst,
                   "leave each graph's first N executions out of every figure but first")
      ->check(nonNegative());
  command->add_option("--format", options->format, "table (default), csv or json")
      ->check(CLI::IsMember({"table", "csv", "json"}));
  command->add_option("--sort", options->order, "table rows by share (default), order or name")
      ->transform(CLI::CheckedTransformer(
          std::map<std::string, StepOrder>{
              {"share", StepOrder::share}, {"order", StepOrder::order}, {"name", StepOrder::name}},
          CLI::ignore_case))
      ->option_text("share|order|name");
  command->add_option("--top", options->top, "keep the first K table rows of each graph")
      ->check(nonNegative());
  command->add_option("--graph", options->graph, "report only the graph NAME");
  command->footer(
      "Columns of the table: count of values, mean, nearest-rank p50/p90/p99 (the value at rank\n"
      "ceil(p/100 x n) of the sorted values), max, first (the cold first execution, even when\n"
      "skipped), share % (mean span over the sum of all steps' mean spans), cum % (running sum\n"
      "of share down the rows), and the spread of the spans from min to max.\n" +
      std::string(statisticsMemoryNote) +
      "\nExit status: 0 done, 1 unreadable log, 2 wrong command line.");
  command->callback([options, &console, &exitCode] { exitCode = runStats(*options, console); });
}

} // namespace kvt::profiling
