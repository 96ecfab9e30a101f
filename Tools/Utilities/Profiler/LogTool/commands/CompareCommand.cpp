// `kvt-profile-log compare BASE NEW` on the command line; the comparison itself is the analysis
// library's.
#include "CommandLine.h"
#include "CommandOutput.h"
#include "ComparisonFlags.h"
#include "LogReadReport.h"
#include "ReaderReports.h"
#include "StatsCommand.h"
#include "ToolCommands.h"
#include "reports/CompareReport.h"
#include "statistics/StatisticsPass.h"

#include <memory>
#include <sstream>
#include <tuple>

namespace kvt::profiling {

namespace {

constexpr int exitSlower = 3; // some series got slower: the regression gate of CI scripts

struct CompareCommandOptions {
  std::string basePath;
  std::string newPath;
  ComparisonOptions comparison;
  uint64_t skipFirst = 0;
  std::string format = "table";
  bool partial = false;
  std::string outputPath;
};

int runCompare(const CompareCommandOptions& options, ToolConsole& console) {
  StatisticsOptions pass;
  pass.skipFirst = options.skipFirst;
  pass.partial = options.partial;
  RunStatistics base;
  RunStatistics next;
  const ReaderReports reports;
  for (auto [role, path, run] : {std::tuple{"base log", &options.basePath, &base},
                                 std::tuple{"new log", &options.newPath, &next}}) {
    if (!reportLogRead(console.err, "kvt-profile-log compare", readRunStatistics(*path, pass, *run),
                       options.partial, role))
      return exitBadInput;
  }
  const Comparison comparison = compareRuns(base, next, options.comparison);
  std::ostringstream text;
  if (options.format == "json")
    writeComparisonJson(text, comparison, options.basePath, options.newPath,
                        {base.partial, next.partial});
  else
    writeComparisonTable(text, comparison);
  if (!writeCommandOutput(console, "kvt-profile-log compare", options.outputPath, text.str()))
    return exitBadInput;
  return comparison.totals.slower ? exitSlower : exitSuccess;
}

} // namespace

void addCompareCommand(CLI::App& tool, CommandRun& run) {
  CLI::App* command =
      tool.add_subcommand("compare", "tells which steps got slower or faster, beyond noise");
  command->footer(
      "Matches graphs by name and their series by key. For each series: the shift of its values\n"
      "(Hodges-Lehmann: the median of all differences new - base) in the log's unit and in\n"
      "percent of the base median, with its (1 - 2 alpha) confidence interval; the p-value of a\n"
      "two-sided Mann-Whitney U test, adjusted for the number of series tested (Holm), and the\n"
      "Benjamini-Hochberg q-value. Verdicts: slower (faster) when the adjusted p-value is below\n"
      "alpha and the shift exceeds the margin (the threshold's share of the base median, and\n"
      "--min-change); same when the whole interval lies within the margin; unsure otherwise,\n"
      "with the executions per run that would tell; added or removed when only one run has it.\n"
      "Each graph's run-wide shift (of its execution duration) heads the table.\n" +
      std::string(statisticsMemoryNote) +
      " Both runs' values are kept at once.\n"
      "Exit status: 0 no series slower, 3 some slower (at most alpha by chance), 1 unreadable\n"
      "log or unwritable output, 2 wrong command line.");
  const auto options = std::make_shared<CompareCommandOptions>();
  command->add_option("BASE", options->basePath, "the log of the base run")
      ->required()
      ->check(nonEmpty());
  command->add_option("NEW", options->newPath, "the log of the new run")
      ->required()
      ->check(nonEmpty());
  addComparisonOptions(*command, options->comparison);
  command
      ->add_option("--skip-first", options->skipFirst,
                   "leave each graph's first N executions out of both runs")
      ->option_text("N")
      ->check(wholeNumber<uint64_t>(0, UINT64_MAX));
  command->add_option("--format", options->format, "table (default) or json")
      ->option_text("table|json")
      ->check(CLI::IsMember({"table", "json"}));
  addPartialFlag(*command, options->partial);
  command->add_option("-o", options->outputPath, "the file to write instead of the standard output")
      ->option_text("FILE")
      ->check(nonEmpty());
  command->callback([options, &run] { run.exitCode = runCompare(*options, run.console); });
}

} // namespace kvt::profiling
