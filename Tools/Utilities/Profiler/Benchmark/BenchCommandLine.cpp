// The benchmark's options declared on CLI11.
#include "BenchCommandLine.h"

#include "CommandLine.h"

namespace kvt::profiling {

void addBenchOptions(CLI::App& app, BenchOptions& options) {
  setUpCommandLine(app);
  app.description(
      "Synthesises profiling logs with kvt-profile-log and measures, each run in a process of its\n"
      "own: the floor (every chunk read and verified, every field read once), the trace reader\n"
      "and the CSV reader, loaded from their shared libraries as the viewer loads them, the\n"
      "statistics pass of kvt-profile-log stats and compare, the page of kvt-profile-log report\n"
      "(its size and its time against stats), the CSV export of kvt-profile-log executions and\n"
      "the frame of kvtprofile.executions in Python; the comparison page of two runs of one\n"
      "graph of 2,000 steps (its size and the time to write it); then both readers on one graph\n"
      "with 10x, 100x and 1000x the executions, and the trace reader on one step level of\n"
      "10,000 distinct identifiers; and compare's false-alarm rate and power over seeded pairs\n"
      "of synthesised runs. The figures go to the standard output.\n");
  // Declared first: options run in declaration order, so the sizes given explicitly win.
  app.add_flag_callback(
      "--quick",
      [&options] {
        options.executions = 300;
        options.scalingBase = 1;
        options.wideExecutions = 10;
        options.pageExecutions = 20;
        options.runs = 1;
        options.csvRuns = 1;
        options.calibration = {10, {50}};
      },
      "small logs and one run each: a check that takes seconds");
  const CLI::Validator positive = wholeNumber<uint64_t>(1, UINT64_MAX);
  const CLI::Validator positiveRuns = wholeNumber<uint32_t>(1, UINT32_MAX);
  app.add_option("--executions", options.executions,
                 "executions of each of the 4 graphs of the main log (default 9000,\n"
                 "about 1.2 GB)")
      ->option_text("E")
      ->check(positive);
  app.add_option("--scaling-base", options.scalingBase,
                 "the scaling series runs 10, 100 and 1000 times E executions\n"
                 "(default 20)")
      ->option_text("E")
      ->check(positive);
  app.add_option("--wide-executions", options.wideExecutions,
                 "executions of the graph of 10,000 steps (default 1000)")
      ->option_text("E")
      ->check(positive);
  app.add_option("--page-executions", options.pageExecutions,
                 "executions of each run of the comparison page's graph of 2,000 steps\n"
                 "(default 200)")
      ->option_text("E")
      ->check(positive);
  app.add_option("--runs", options.runs,
                 "best of N runs of the floor and the trace reader "
                 "(default 3)")
      ->option_text("N")
      ->check(positiveRuns);
  app.add_option("--csv-runs", options.csvRuns, "best of N runs of the CSV reader (default 1)")
      ->option_text("N")
      ->check(positiveRuns);
  app.add_option("--calibration-pairs", options.calibration.pairs,
                 "pairs of runs of each cell of compare's calibration (default\n"
                 "200)")
      ->option_text("N")
      ->check(positiveRuns);
  app.add_option("--work-dir", options.workDir,
                 "where the logs and outputs are written (default: a fresh\n"
                 "directory in the temporary directory, removed at the end)")
      ->option_text("DIR")
      ->check(nonEmpty());
}

} // namespace kvt::profiling
