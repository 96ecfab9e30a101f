// The kvtprofile module: each function checks its arguments, reads with the GIL released through
// the analysis library or the reader, and hands back what it read as pandas or text.
#include "Arguments.h"
#include "FrameColumns.h"
#include "Frames.h"
#include "HistoryFrames.h"
#include "ReaderFailure.h"
#include "history/HistoryInputs.h"
#include "plugin/KvtProfileLogReader.h"
#include "statistics/StatisticsPass.h"
#include "tables/ExecutionColumns.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

#include <pybind11/pybind11.h>
#include <pybind11/stl/filesystem.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <thread>

namespace kvt::profiling {

namespace {

using Path = std::filesystem::path;

constexpr const char* logUnit = "us"; // the unit the reader shows a log's values in

VisibilityLevel readVisibility(const IntegerArgument& argument) {
  const int64_t visibility = readInteger(argument.value, "visibility");
  if (visibility < -128 || visibility > 127)
    throw py::value_error("visibility must be from -128 to 127, not " + std::to_string(visibility));
  return VisibilityLevel(visibility);
}

uint64_t readSkipFirst(const IntegerArgument& argument) {
  const int64_t skipFirst = readInteger(argument.value, "skip_first");
  if (skipFirst < 0)
    throw py::value_error("skip_first must be 0 or more, not " + std::to_string(skipFirst));
  return uint64_t(skipFirst);
}

FrameLogs describeLogs(const LogPaths& logs) {
  FrameLogs frameLogs{{}, logs.list};
  for (const Path& path : logs.paths)
    frameLogs.paths.push_back(path.string());
  return frameLogs;
}

// log is the path, or the list of paths when several were asked for.
py::dict describeRead(const FrameLogs& logs, uint64_t skipFirst, VisibilityLevel visibility) {
  py::dict attrs;
  py::list paths;
  for (const std::string& path : logs.paths)
    paths.append(decodeText(path));
  attrs["log"] = logs.column ? py::object(paths) : py::object(paths[0]);
  attrs["unit"] = logUnit;
  attrs["skip_first"] = skipFirst;
  attrs["visibility"] = int(visibility);
  return attrs;
}

// attrs["partial"]: the one log's, or a dict of each log's by its path.
py::object describePartials(const FrameLogs& logs,
                            const std::vector<std::optional<LogReadResult>>& partials) {
  if (!logs.column)
    return describePartial(partials.front());
  py::dict described;
  for (size_t log = 0; log < partials.size(); ++log)
    described[decodeText(logs.paths[log])] = describePartial(partials[log]);
  return described;
}

FrameResult readExecutions(const LogsArgument& path, const IntegerArgument& visibility,
                           const IntegerArgument& skipFirst, const FlagArgument& partialArgument) {
  const LogPaths logs = readLogPaths(path.value, "path");
  requireReadThreads();
  const ExecutionRowOptions options{readVisibility(visibility), readSkipFirst(skipFirst)};
  const bool partial = readFlag(partialArgument.value, "partial");
  ExecutionColumnBuilder builder;
  std::vector<std::optional<LogReadResult>> partials;
  for (const Path& log : logs.paths) {
    requireExistingFile(log);
    const py::gil_scoped_release released;
    clearReaderMessages();
    const LogReadResult read = readExecutionColumns(log.string(), options, builder);
    requireStandingRead(read, partial);
    partials.push_back(read.complete() ? std::nullopt : std::optional(read));
  }
  ExecutionColumns columns = std::move(builder).take();
  const FrameLogs frameLogs = describeLogs(logs);
  py::object frame = makeExecutionsFrame(columns, frameLogs);
  py::dict attrs = describeRead(frameLogs, options.skipFirst, options.visibilityLevel);
  attrs["partial"] = describePartials(frameLogs, partials);
  frame.attr("attrs") = attrs;
  return {frame};
}

RunStatistics readStatistics(const Path& path, const StatisticsOptions& options,
                             std::string_view role = {}) {
  requireReadThreads();
  requireExistingFile(path);
  RunStatistics run;
  const py::gil_scoped_release released;
  clearReaderMessages();
  requireStandingRead(readRunStatistics(path.string(), options, run), options.partial, role);
  return run;
}

py::dict countExecutions(const RunStatistics& run) {
  py::dict executions;
  for (const GraphStatistics& graph : run.graphs)
    executions[decodeText(graph.name)] = graph.executions - graph.skipped;
  return executions;
}

FrameResult readStats(const LogsArgument& path, const IntegerArgument& skipFirst,
                      const IntegerArgument& visibility, const FlagArgument& partial) {
  const LogPaths logs = readLogPaths(path.value, "path");
  StatisticsOptions options;
  options.skipFirst = readSkipFirst(skipFirst);
  options.visibilityLevel = readVisibility(visibility);
  options.partial = readFlag(partial.value, "partial");
  std::vector<RunStatistics> runs;
  std::vector<std::optional<LogReadResult>> partials;
  for (const Path& log : logs.paths) {
    runs.push_back(readStatistics(log, options));
    partials.push_back(runs.back().partial);
  }
  const FrameLogs frameLogs = describeLogs(logs);
  py::object frame = makeStatsFrame(runs, frameLogs);
  py::dict attrs = describeRead(frameLogs, options.skipFirst, options.visibilityLevel);
  if (logs.list) {
    py::dict executions;
    for (size_t log = 0; log < runs.size(); ++log)
      executions[decodeText(frameLogs.paths[log])] = countExecutions(runs[log]);
    attrs["executions"] = executions;
  } else {
    attrs["executions"] = countExecutions(runs.front());
  }
  attrs["partial"] = describePartials(frameLogs, partials);
  frame.attr("attrs") = attrs;
  return {frame};
}

// The comparison's own check of its options, in the module's words.
ComparisonOptions readComparisonOptions(const NumberArgument& alpha,
                                        const NumberArgument& threshold,
                                        const NumberArgument& minChange,
                                        const FlagArgument& relative) {
  const ComparisonOptions options{
      readNumber(alpha.value, "alpha"), readNumber(threshold.value, "threshold"),
      readNumber(minChange.value, "min_change"), readFlag(relative.value, "relative")};
  if (const std::optional<ComparisonOption> refused = findOptionOutOfRange(options)) {
    const char* names[] = {"alpha", "threshold", "min_change"}; // by ComparisonOption
    throw py::value_error(std::string(names[int(*refused)]) + " needs " +
                          std::string(describeRange(*refused)) + ", not " +
                          py::repr(py::float_(readOption(options, *refused))).cast<std::string>());
  }
  return options;
}

FrameResult readComparison(const PathArgument& basePath, const PathArgument& newPath,
                           const NumberArgument& alpha, const NumberArgument& threshold,
                           const NumberArgument& minChange, const FlagArgument& relative,
                           const IntegerArgument& skipFirst, const FlagArgument& partial) {
  const Path base = readPath(basePath.value, "base");
  const Path next = readPath(newPath.value, "new");
  const ComparisonOptions comparisonOptions =
      readComparisonOptions(alpha, threshold, minChange, relative);
  StatisticsOptions options;
  options.skipFirst = readSkipFirst(skipFirst);
  options.partial = readFlag(partial.value, "partial");
  const RunStatistics baseRun = readStatistics(base, options, "base log");
  const RunStatistics nextRun = readStatistics(next, options, "new log");
  Comparison comparison;
  {
    const py::gil_scoped_release released;
    comparison = compareRuns(baseRun, nextRun, comparisonOptions);
  }
  py::object frame = makeComparisonFrame(comparison);
  py::dict attrs;
  attrs["base"] = decodeText(base.string());
  attrs["new"] = decodeText(next.string());
  attrs["unit"] = logUnit;
  attrs["alpha"] = comparisonOptions.alpha;
  attrs["threshold"] = comparisonOptions.thresholdPercent;
  attrs["min_change"] = comparisonOptions.minChangeUnits;
  attrs["relative"] = comparisonOptions.relative;
  attrs["skip_first"] = options.skipFirst;
  attrs["graphs"] = describeGraphShifts(comparison);
  attrs["totals"] = describeTotals(comparison.totals);
  py::dict partials;
  partials["base"] = describePartial(baseRun.partial);
  partials["new"] = describePartial(nextRun.partial);
  attrs["partial"] = partials;
  frame.attr("attrs") = attrs;
  return {frame};
}

HistoryFigure readFigure(const TextArgument& argument) {
  if (const std::optional<HistoryFigure> figure =
          findHistoryFigure(readText(argument.value, "figure")))
    return *figure;
  throw py::value_error("figure must be p50, p90 or mean, not " +
                        py::repr(argument.value).cast<std::string>());
}

// The ranges of the command's --min-runs and --gate.
uint64_t readMinRuns(const IntegerArgument& argument) {
  const int64_t minRuns = readInteger(argument.value, "min_runs");
  if (minRuns < 1 || minRuns > int64_t(UINT32_MAX))
    throw py::value_error("min_runs must be from 1 to " + std::to_string(UINT32_MAX) + ", not " +
                          std::to_string(minRuns));
  return uint64_t(minRuns);
}

uint64_t readGate(const IntegerArgument& argument) {
  const int64_t gate = readInteger(argument.value, "gate");
  if (gate < 0)
    throw py::value_error("gate must be 0 or more, not " + std::to_string(gate));
  return uint64_t(gate);
}

// The command's --order: the runs as given, or by their logs' creation times.
std::string readOrder(const TextArgument& argument) {
  std::string order = readText(argument.value, "order");
  if (order != "given" && order != "created")
    throw py::value_error("order must be given or created, not " +
                          py::repr(argument.value).cast<std::string>());
  return order;
}

[[noreturn]] void throwRunFailure(const HistoryInputError& error) {
  throw LogFailure(error.path + ": " + error.problem);
}

// The attrs both frames of a history carry.
py::dict describeHistory(const History& history, const HistoryReadOptions& reading) {
  const HistoryOptions& judged = history.options;
  py::dict attrs;
  attrs["unit"] = logUnit;
  attrs["figure"] = std::string(historyFigureName(reading.figure));
  attrs["skip_first"] = reading.skipFirst;
  attrs["alpha"] = judged.comparison.alpha;
  attrs["threshold"] = judged.comparison.thresholdPercent;
  attrs["min_change"] = judged.comparison.minChangeUnits;
  attrs["min_runs"] = judged.minRuns;
  attrs["relative"] = judged.comparison.relative;
  attrs["gate"] = judged.gate;
  attrs["too_few_runs"] = history.tooFewRuns;
  attrs["runs"] = describeHistoryRuns(history);
  attrs["graphs"] = describeHistoryGraphs(history);
  attrs["totals"] = describeHistoryTotals(history.totals);
  return attrs;
}

HistoryResult readHistory(const LogsArgument& runsArgument, const TextArgument& order,
                          const TextArgument& figure, const IntegerArgument& skipFirst,
                          const NumberArgument& alpha, const NumberArgument& threshold,
                          const NumberArgument& minChange, const FlagArgument& relative,
                          const IntegerArgument& minRuns, const IntegerArgument& gate) {
  const LogPaths given = readLogPaths(runsArgument.value, "runs", true);
  const bool byCreation = readOrder(order) == "created";
  const HistoryReadOptions reading{readFigure(figure), readSkipFirst(skipFirst),
                                   std::max(1u, std::thread::hardware_concurrency())};
  const HistoryOptions options{readComparisonOptions(alpha, threshold, minChange, relative),
                               readMinRuns(minRuns), readGate(gate)};
  std::vector<std::string> arguments;
  for (const Path& path : given.paths)
    arguments.push_back(path.string());
  std::vector<std::string> paths;
  if (const std::optional<HistoryInputError> error = expandRunLists(arguments, paths))
    throwRunFailure(*error);
  for (const std::string& path : paths)
    requireExistingFile(path);
  requireReadThreads();
  std::vector<RunSeriesFigures> runs;
  std::optional<HistoryInputError> unread;
  {
    const py::gil_scoped_release released;
    clearReaderMessages();
    unread = readHistoryRuns(paths, reading, runs);
  }
  if (unread)
    throwRunFailure(*unread);
  if (const std::optional<HistoryRunProblem> problem = arrangeHistoryRuns(runs, byCreation))
    throw LogFailure(problem->source + ' ' + problem->problem);
  History history;
  {
    const py::gil_scoped_release released;
    history = buildHistory(std::move(runs), options);
  }
  py::object changes = makeHistoryChangesFrame(history);
  changes.attr("attrs") = describeHistory(history, reading);
  py::object values = makeHistoryValuesFrame(history);
  values.attr("attrs") = describeHistory(history, reading);
  return {py::module_::import("kvtprofile").attr("History")(changes, values)};
}

// What the reader prints, as the viewer shows it, goes to this call's own stream: calls on other
// threads run side by side.
template <typename Reader> std::string runReader(const Path& path, const std::string& outputPath) {
  requireExistingFile(path);
  std::ostringstream printed;
  const py::gil_scoped_release released;
  clearReaderMessages();
  Reader reader(path.string(), VisibilityLevel::keepAll);
  reader.printTo(printed);
  if (!reader.parseLog(false) || !reader.writeOutputs(outputPath))
    throwReaderFailure("cannot read the log " + path.string());
  return printed.str();
}

} // namespace

} // namespace kvt::profiling

PYBIND11_MODULE(kvtprofile, module) {
  using namespace kvt::profiling;
  module.doc() =
      "Profiling logs as pandas data frames: every execution's values (executions), each "
      "series' figures (stats), the changes between two runs (compare) and across a history of "
      "runs (history), and the reader's own summary and trace. Values are in the "
      "log's unit, shown as microseconds; a frame's attrs name it.";
  // Every function hands back pandas objects; importing it here keeps its import out of the
  // first call.
  py::module_::import("pandas");
  catchReaderMessages();
  py::register_exception<LogFailure>(module, "LogError").attr("__doc__") =
      "The log was refused: the file and what is wrong where, then the reader's own messages.";

  module.def("executions", &readExecutions, py::arg("path"), py::kw_only(),
             py::arg("visibility") = 127, py::arg("skip_first") = 0, py::arg("partial") = false,
             R"(Every execution's values as one long table, a row per value.

path is a log, or a list (any iterable) of logs, read into one frame in the given order.
Rows come execution by execution in log order, each execution's as the statistics walk it: its
duration, its queue wait when it had exactly one queue-wait event, then each top-level back-end
record (not that queue wait) followed by the span and (where it has one) the wait of each of
its steps. Each value is in exactly one series.

Columns:
  graph       category: the graph's name
  series      category: "duration", "queueWait", "backend", "span" or "wait" (all five are
              categories)
  name        category: the record's or step's identifier; the series for duration, queueWait
  parent      category: the top-level record a step runs under; missing but for span, wait
  occurrence  Int64: the k-th record of that name (under that parent) in one execution, from 0;
              missing for duration and queueWait
  execution   int64: the execution's index within its graph, from 0 (skipped ones count)
  value       int64: in the log's unit
  log         category: the log's path as given; only when path is a list, whose logs share
              the categories of every column (no pd.concat needed)

attrs: log (the path, or the list of paths), unit ("us"), skip_first, visibility, partial.

visibility keeps messages whose level is below it (-128 to 127); skip_first leaves each graph's
first executions out. Whole numbers are signed, so differences keep their sign; a value above
2^63 - 1 (no real time: 292,000 years of microseconds) raises OverflowError naming the log,
series, execution and value rather than wrapping.

Raises LogError when a log is refused: its first line names the file and what is wrong where
("run.log: chunk 15 at offset 4809716 is cut short: ..."), the reader's own messages follow.
partial=True instead reads a cut or damaged log up to its first bad chunk: attrs["partial"] is
then {"chunks_read", "bytes_read", "reason"} and a RuntimeWarning says what was dropped (None
when the log was whole; for a list, a dict of each log's by its path). A path that is no log
still raises. FileNotFoundError when there is no file, TypeError naming the argument when one is
of the wrong type, ValueError when one is out of range or a list is empty or names a log twice.
The GIL is released while reading.

Example: the p99 of each step's span, slowest first:
  df = kvtprofile.executions("run.log", skip_first=1)
  spans = df[df.series == "span"]
  keys = ["graph", "parent", "name", "occurrence"]
  spans.groupby(keys, observed=True).value.quantile(0.99).sort_values(ascending=False))");

  module.def("stats", &readStats, py::arg("path"), py::kw_only(), py::arg("skip_first") = 0,
             py::arg("visibility") = 127, py::arg("partial") = false,
             R"(Each series' figures, a row per series, as `kvt-profile-log stats` gives them.

path is a log or a list of logs, as for executions(). Columns: graph, series, name, parent,
occurrence (the series' key, as in executions()), count (values counted), mean, stddev
(population), min, p50, p90, p99 (nearest rank: the value at rank ceil(p/100 x n)), max, first
(the value of the graph's very first execution, even when skipped) and share (span rows: the
step's mean span in percent of the sum of all steps' mean spans), then log for a list. Whole
figures are Int64, missing where JSON has null; figures but count and first are missing when
count is 0. Grouping executions() by the key gives the same figures. The queue wait is a series
when some execution had exactly one (count says how many).

attrs: log, unit, skip_first, visibility, executions (counted, by graph; for a list, by log and
then by graph), partial.
partial, LogError, FileNotFoundError, OverflowError, TypeError and ValueError as in
executions().)");

  const ComparisonOptions defaults;
  module.def("compare", &readComparison, py::arg("base"), py::arg("new"), py::kw_only(),
             py::arg("alpha") = defaults.alpha, py::arg("threshold") = defaults.thresholdPercent,
             py::arg("min_change") = defaults.minChangeUnits,
             py::arg("relative") = defaults.relative, py::arg("skip_first") = 0,
             py::arg("partial") = false,
             R"(Which series got slower or faster between two runs, as `kvt-profile-log compare`
judges them, a row per series (base graphs and series in their order, then what new adds).

Columns, those of `compare --format json` with its nested values flat and in snake_case:
  graph, series, name, parent, occurrence   the series' key, as in executions()
  base_count, base_p50, new_count, new_p50  each run's counted values and median ("base" and
                                            "new" in JSON; int64, the medians Int64)
  shift           the Hodges-Lehmann shift, new - base, in the log's unit
  change_percent  the shift in percent of the base median
  interval_low, interval_high  its (1 - 2 alpha) interval, in percent ("interval" in JSON)
  p_value, p_adjusted (Holm), q_value (Benjamini-Hochberg)
  verdict         ordered category of all six verdicts: slower < faster < same < unsure <
                  added < removed
  needed_base, needed_new  unsure rows: the executions each run needs beyond those it has
                           before the row would decide (Int64)
Missing where JSON has null.

attrs: base, new, unit, alpha, threshold, min_change, relative, skip_first, graphs (each
graph's run-wide shift: name, shift, change_percent, interval_low, interval_high, ratio,
step_series),
totals (slower, faster, same, unsure, added, removed, tested) and partial ({"base": ...,
"new": ...}, each as in executions()).

alpha (above 0, below 0.5), threshold (percent, 0 or more), min_change (log units, 0 or more)
and relative are the command's --alpha, --threshold, --min-change and --relative, with its
defaults and checks. Raises LogError as executions() does, its first line opened by "base log"
or "new log"; FileNotFoundError, OverflowError (a median above 2^63 - 1), TypeError and
ValueError too.)");

  module.attr("History") = py::module_::import("collections")
                               .attr("namedtuple")("History", py::make_tuple("changes", "values"),
                                                   py::arg("module") = "kvtprofile");
  module.attr("History").attr("__doc__") =
      "The frames of a history of runs: changes, a row per change of a series, and values, a "
      "row per series and run with a value (see help(kvtprofile.history)).";
  const HistoryOptions historyDefaults;
  module.def("history", &readHistory, py::arg("runs"), py::kw_only(), py::arg("order") = "given",
             py::arg("figure") = "p50", py::arg("skip_first") = 0,
             py::arg("alpha") = historyDefaults.comparison.alpha,
             py::arg("threshold") = historyDefaults.comparison.thresholdPercent,
             py::arg("min_change") = historyDefaults.comparison.minChangeUnits,
             py::arg("relative") = historyDefaults.comparison.relative,
             py::arg("min_runs") = historyDefaults.minRuns, py::arg("gate") = historyDefaults.gate,
             R"(Which series changed, at which run, across a history of runs, as
`kvt-profile-log history` finds them. Returns kvtprofile.History, a named tuple of two frames:
  changes, values = kvtprofile.history(sorted(glob.glob("nightly/*.json")))

runs is a list (any iterable) of runs, oldest first: logs, `stats --format json` documents of
one (a few kilobytes a run instead of the log) or "@FILE", a list of either, one path a line;
one path alone is a history of one run (or of the runs of a list). A run may come back. order
"created" sorts the runs by their logs' creation times instead (a stats document has none:
LogError). Each series becomes one value per run, its figure ("p50", "p90" or "mean") over the run's counted
executions, skip_first leaving each graph's first executions of a log out.

changes: a row per change of a series, series in the history's order, each one's changes by run:
  graph, series, name, parent, occurrence   the series' key, as in executions()
  run             int64: index of the first run after the change, from 0
  source          category: that run's path
  before, after   the medians of the run values on either side (divided by the run-wide factor
                  when relative)
  change_percent  the Hodges-Lehmann shift in percent of before
  interval_low, interval_high  its distribution-free (1 - 2 alpha) interval, in percent
  p_adjusted (Holm), q_value (Benjamini-Hochberg), over every series of the history
  verdict         ordered category of all six verdicts, as in compare(); a history's are
                  slower, faster, added and removed
Missing where `history --format json` has null.

values: a row per series and run with a value, run after run (the rows of
`history --format csv`): the key, run, source and value (float64, in the log's unit).

attrs, the same on both: unit, figure, skip_first, alpha, threshold, min_change, min_runs,
relative, gate, too_few_runs (fewer than 2 x min_runs runs: no change can be found), runs (each
run's source, created in us since the epoch or None for a stats document, and executions
counted), graphs (each graph's run_factor per run and its run_wide changes, dicts of the changes
columns from run on) and totals (series, changes, slower, faster, added, removed, run_wide,
slower_in_gate, tested). The command's gate fails (exit 3) when totals["slower_in_gate"] > 0:
a slower change within the last gate runs.

alpha, threshold, min_change and relative are compare()'s, with its defaults and checks;
min_runs (1 or more: runs on each side of a change) and gate as the command's --min-runs and
--gate. The GIL is released while the runs are read (logs
one per core) and searched.

Raises LogError naming the file when a run cannot be read (not a log the reader takes nor a
stats JSON, not JSON, a stats JSON of another version) or a list cannot be opened, and when a
run shares no series with the others; FileNotFoundError when a run is missing; TypeError naming
the argument when one is of the wrong type; ValueError when one is out of range or runs is
empty.)");

  module.def(
      "summary",
      [](const PathArgument& path) {
        return runReader<KvtProfileLogReader>(readPath(path.value, "path"), "");
      },
      py::arg("path"),
      R"(The reader's statistics summary of the log, the text the viewer prints with
`--reader csv` and no output: parse warnings, then every section of the summary.
Raises LogError with the reader's message when it refuses the log.)");

  module.def(
      "trace",
      [](const PathArgument& path, const PathArgument& output) {
        return runReader<KvtProfileLogReaderChrometrace>(readPath(path.value, "path"),
                                                         readPath(output.value, "output").string());
      },
      py::arg("path"), py::arg("output"),
      R"(Writes the log's Chrome Trace Event Format file to output, as the viewer does, and
returns what the viewer prints with it (parse warnings and the run and execute statistics).
Raises LogError with the reader's message when it refuses the log or cannot write output.)");
}
