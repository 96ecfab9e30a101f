// `kvt-profile-log compare BASE NEW` on the command line; the comparison itself is the analysis
// library's.
#include "CommandLine.h"
#include "ReaderReports.h"
#include "StatsCommand.h"
#include "ToolCommands.h"
#include "reports/CompareReport.h"
#include "statistics/StatisticsPass.h"

#include <charconv>
#include <memory>
#include <tuple>

namespace kvt::profiling {

namespace {

constexpr int exitSlower = 3; // some series got slower: the regression gate of CI scripts

struct CompareCommandOptions {
  std::string basePath;
  std::string newPath;
  double thresholdPercent = 5;
  uint64_t skipFirst = 0;
  std::string format = "table";
};

// A percentage of 0 or more in plain decimal.
CLI::Validator percentage() {
  return CLI::Validator(
      [](const std::string& text) -> std::string {
        double value = 0;
        const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (status == std::errc() && end == text.data() + text.size() && value >= 0)
          return {};
        return "needs a percentage of 0 or more, not '" + text + "'";
      },
      "");
}

int runCompare(const CompareCommandOptions& options, ToolConsole& console) {
  StatisticsOptions pass;
  pass.skipFirst = options.skipFirst;
  RunStatistics base;
  RunStatistics next;
  const ReaderReports reports;
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

void addCompareCommand(CLI::App& tool, CommandRun& run) {
  CLI::App* command =
      tool.add_subcommand("compare", "tells which steps got slower or faster, beyond noise");
  command->footer(
      "Matches graphs by name and their series by key. A series is slower when its new median\n"
      "exceeds the base median by more than the threshold and a two-sided Mann-Whitney U test\n"
      "(normal approximation, tie and continuity corrections) gives a p-value below 0.01;\n"
      "faster likewise the other way; same otherwise; added or removed when only one run has\n"
      "it. The table lists slower rows first, then faster, then the rest.\n" +
      std::string(statisticsMemoryNote) +
      " Both runs' values are kept at once.\n"
      "Exit status: 0 no series slower, 3 some slower, 1 unreadable log, 2 wrong command line.");
  const auto options = std::make_shared<CompareCommandOptions>();
  command->add_option("BASE", options->basePath, "the log of the base run")
      ->required()
      ->check(nonEmpty());
  command->add_option("NEW", options->newPath, "the log of the new run")
      ->required()
      ->check(nonEmpty());
  command
      ->add_option("--threshold", options->thresholdPercent,
                   "the change of the median, in percent, up to which a series\n"
                   "is the same (default 5)")
      ->option_text("PCT")
      ->check(percentage());
  command
      ->add_option("--skip-first", options->skipFirst,
                   "leave each graph's first N executions out of both runs")
      ->option_text("N")
      ->check(wholeNumber<uint64_t>(0, UINT64_MAX));
  command->add_option("--format", options->format, "table (default) or json")
      ->option_text("table|json")
      ->check(CLI::IsMember({"table", "json"}));
  command->callback([options, &run] { run.exitCode = runCompare(*options, run.console); });
}

} // namespace kvt::profiling
