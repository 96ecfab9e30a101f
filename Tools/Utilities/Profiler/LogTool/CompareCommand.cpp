// The compare command's options and output; the comparison itself is the analysis library's.
#include "CompareCommand.h"

#include "CompareReport.h"
#include "StatisticsPass.h"
#include "StatsCommand.h"

#include <memory>

namespace kvt::profiling {

namespace {

struct CompareCommandOptions {
  std::string basePath;
  std::string newPath;
  double thresholdPercent = 5;
  uint64_t skipFirst = 0;
  std::string format = "table";
};

int runCompare(const CompareCommandOptions& options, ToolConsole& console) {
  StatisticsOptions pass;
  pass.skipFirst = options.skipFirst;
  RunStatistics base;
  RunStatistics next;
  for (auto [role, path, run] :
       {std::tuple{"base", &options.basePath, &base}, std::tuple{"new", &options.newPath, &next}}) {
    if (!readRunStatistics(*path, pass, *run)) {
      console.err << "kvt-profile-log compare: cannot read the " << role << " log " << *path
                  << '\n';
      return exitBadInput;
    }
  }
  const Comparison comparison = compareRuns(base, next, options.thresholdPercent);
  if (options.format == "json")
    writeComparisonJson(console.out, comparison, options.basePath, options.newPath,
                        options.thresholdPercent);
  else
    writeComparisonTable(console.out, comparison);
  return comparison.totals.slower ? exitSlower : exitSuccess;
}

} // namespace

void addCompareCommand(CLI::App& app, ToolConsole& console, int& exitCode) {
  auto options = std::make_shared<CompareCommandOptions>();
  CLI::App* command = app.add_subcommand(
      "compare", "Compares every series of two runs by their medians and a rank test: slower, "
                 "faster or same, or added or removed when only one run has it.");
  command->add_option("BASE", options->basePath, "the log of the base run")->required();
  command->add_option("NEW", options->newPath, "the log of the new run")->required();
  command
      ->add_option("--threshold", options->thresholdPercent,
                   "the change of the median, in percent, below which a series is the same "
                   "(default 5)")
      ->check(nonNegative());
  command
      ->add_option("--skip-first", options->skipFirst,
                   "leave each graph's first N executions out of both runs")
      ->check(nonNegative());
  command->add_option("--format", options->format, "table (default) or json")
      ->check(CLI::IsMember({"table", "json"}));
  command->footer(
      "A series is slower when its new median exceeds the base median by more than the\n"
      "threshold and a two-sided Mann-Whitney U test (normal approximation, tie and continuity\n"
      "corrections) gives a p-value below 0.01; faster likewise the other way; same otherwise.\n"
      "The table lists slower rows first, then faster, then the rest.\n" +
      std::string(statisticsMemoryNote) +
      " Both runs' values are kept at once.\n"
      "Exit status: 0 no series slower, 3 some slower, 1 unreadable log, 2 wrong command line.");
  command->callback([options, &console, &exitCode] { exitCode = runCompare(*options, console); });
}

} // namespace kvt::profiling
