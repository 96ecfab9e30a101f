// The kvtprofile module: each function checks its arguments, reads with the GIL released through
// the analysis library or the reader, and hands back what it read as pandas or text.
#include "FrameColumns.h"
#include "Frames.h"
#include "ReaderFailure.h"
#include "plugin/KvtProfileLogReader.h"
#include "statistics/StatisticsPass.h"
#include "tables/ExecutionColumns.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

#include <pybind11/pybind11.h>
#include <pybind11/stl/filesystem.h>

#include <sstream>

namespace kvt::profiling {

namespace {

using Path = std::filesystem::path;

constexpr const char* logUnit = "us"; // the unit the reader shows a log's values in

VisibilityLevel readVisibility(int64_t visibility) {
  if (visibility < -128 || visibility > 127)
    throw py::value_error("visibility must be from -128 to 127, not " + std::to_string(visibility));
  return VisibilityLevel(visibility);
}

uint64_t readSkipFirst(int64_t skipFirst) {
  if (skipFirst < 0)
    throw py::value_error("skip_first must be 0 or more, not " + std::to_string(skipFirst));
  return uint64_t(skipFirst);
}

py::dict describeRead(const Path& path, uint64_t skipFirst, VisibilityLevel visibility) {
  py::dict attrs;
  attrs["log"] = decodeText(path.string());
  attrs["unit"] = logUnit;
  attrs["skipFirst"] = skipFirst;
  attrs["visibility"] = int(visibility);
  return attrs;
}

py::object readExecutions(const Path& path, int64_t visibility, int64_t skipFirst, bool partial) {
  const ExecutionRowOptions options{readVisibility(visibility), readSkipFirst(skipFirst)};
  requireExistingFile(path);
  ExecutionColumns columns;
  LogReadResult read;
  {
    const py::gil_scoped_release released;
    clearReaderMessages();
    read = readExecutionColumns(path.string(), options, partial, columns);
    requireStandingRead(read, partial);
  }
  py::object frame = makeExecutionsFrame(columns);
  py::dict attrs = describeRead(path, options.skipFirst, options.visibilityLevel);
  attrs["partial"] = describePartial(read.complete() ? std::nullopt : std::optional(read));
  frame.attr("attrs") = attrs;
  return frame;
}

RunStatistics readStatistics(const Path& path, const StatisticsOptions& options,
                             std::string_view role = {}) {
  requireExistingFile(path);
  RunStatistics run;
  const py::gil_scoped_release released;
  clearReaderMessages();
  requireStandingRead(readRunStatistics(path.string(), options, run), options.partial, role);
  return run;
}

py::object readStats(const Path& path, int64_t skipFirst, int64_t visibility, bool partial) {
  StatisticsOptions options;
  options.skipFirst = readSkipFirst(skipFirst);
  options.visibilityLevel = readVisibility(visibility);
  options.partial = partial;
  const RunStatistics run = readStatistics(path, options);
  py::object frame = makeStatsFrame(run);
  py::dict attrs = describeRead(path, options.skipFirst, options.visibilityLevel);
  py::dict executions;
  for (const GraphStatistics& graph : run.graphs)
    executions[decodeText(graph.name)] = graph.executions - graph.skipped;
  attrs["executions"] = executions;
  attrs["partial"] = describePartial(run.partial);
  frame.attr("attrs") = attrs;
  return frame;
}

// The rules of the command line's options, with its words.
ComparisonOptions readComparisonOptions(double alpha, double threshold, double minChange,
                                        bool relative) {
  auto refuse = [](const std::string& name, const std::string& what, double value) {
    throw py::value_error(name + " needs " + what + ", not " +
                          py::repr(py::float_(value)).cast<std::string>());
  };
  if (!(alpha > 0 && alpha < 0.5))
    refuse("alpha", "a probability above 0 and below 0.5", alpha);
  if (!(threshold >= 0))
    refuse("threshold", "a percentage of 0 or more", threshold);
  if (!(minChange >= 0))
    refuse("min_change", "a number of units of 0 or more", minChange);
  return ComparisonOptions{alpha, threshold, minChange, relative};
}

py::object readComparison(const Path& basePath, const Path& newPath, double alpha, double threshold,
                          double minChange, bool relative, int64_t skipFirst, bool partial) {
  const ComparisonOptions comparisonOptions =
      readComparisonOptions(alpha, threshold, minChange, relative);
  StatisticsOptions options;
  options.skipFirst = readSkipFirst(skipFirst);
  options.partial = partial;
  const RunStatistics base = readStatistics(basePath, options, "base log");
  const RunStatistics next = readStatistics(newPath, options, "new log");
  Comparison comparison;
  {
    const py::gil_scoped_release released;
    comparison = compareRuns(base, next, comparisonOptions);
  }
  py::object frame = makeComparisonFrame(comparison);
  py::dict attrs;
  attrs["base"] = decodeText(basePath.string());
  attrs["new"] = decodeText(newPath.string());
  attrs["unit"] = logUnit;
  attrs["alpha"] = alpha;
  attrs["threshold"] = threshold;
  attrs["minChange"] = minChange;
  attrs["relative"] = relative;
  attrs["skipFirst"] = options.skipFirst;
  attrs["graphs"] = describeGraphShifts(comparison);
  attrs["totals"] = describeTotals(comparison.totals);
  py::dict partials;
  partials["base"] = describePartial(base.partial);
  partials["new"] = describePartial(next.partial);
  attrs["partial"] = partials;
  frame.attr("attrs") = attrs;
  return frame;
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
      "series' figures (stats), and the reader's own summary and trace. Values are in the "
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

Rows come graph by graph in log order, each execution's as the statistics walk it: its
duration, its queue wait when it had exactly one, then each top-level back-end record followed
by the span and (where it has one) the wait of each of its steps.

Columns:
  graph       category: the graph's name
  execution   int64: the execution's index within its graph, from 0 (skipped ones count)
  series      category: "duration", "queueWait", "backend", "span" or "wait"
  parent      category: the top-level record a step runs under; missing but for span, wait
  name        category: the record's or step's identifier; the series for duration, queueWait
  occurrence  UInt64: the k-th record of that name (under that parent) in one execution, from 0;
              missing for duration and queueWait
  value       uint64: in the log's unit

attrs: log, unit ("us"), skipFirst, visibility, partial.

visibility keeps messages whose level is below it (-128 to 127); skip_first leaves each graph's
first executions out. Raises LogError when the log is refused: its first line names the file and
what is wrong where ("run.log: chunk 15 at offset 4809716 is cut short: ..."), the reader's own
messages follow. partial=True instead reads a cut or damaged log up to its first bad chunk:
attrs["partial"] is then {"chunksRead", "bytesRead", "reason"} and a RuntimeWarning says what was
dropped (None when the log was whole). A path that is no log still raises. FileNotFoundError when
there is no file. The GIL is released while reading.

Example: the p99 of each step's span, slowest first:
  df = kvtprofile.executions("run.log", skip_first=1)
  spans = df[df.series == "span"]
  keys = ["graph", "parent", "name", "occurrence"]
  spans.groupby(keys, observed=True).value.quantile(0.99).sort_values(ascending=False))");

  module.def("stats", &readStats, py::arg("path"), py::kw_only(), py::arg("skip_first") = 0,
             py::arg("visibility") = 127, py::arg("partial") = false,
             R"(Each series' figures, a row per series, as `kvt-profile-log stats` gives them.

Columns: graph, series, name, parent, occurrence (the series' key, as in executions()), count
(values counted), mean, stddev (population), min, p50, p90, p99 (nearest rank: the value at
rank ceil(p/100 x n)), max, first (the value of the graph's very first execution, even when
skipped) and share (span rows: the step's mean span in percent of the sum of all steps' mean
spans). Figures but count and first are missing when count is 0. The queue wait is a series
only when every counted execution had exactly one.

attrs: log, unit, skipFirst, visibility, executions (counted, by graph), partial.
partial, LogError, FileNotFoundError, ValueError as in executions().)");

  module.def("compare", &readComparison, py::arg("base"), py::arg("new"), py::kw_only(),
             py::arg("alpha") = 0.01, py::arg("threshold") = 5.0, py::arg("min_change") = 0.0,
             py::arg("relative") = false, py::arg("skip_first") = 0, py::arg("partial") = false,
             R"(Which series got slower or faster between two runs, as `kvt-profile-log compare`
judges them, a row per series (base graphs and series in their order, then what new adds).

Columns, those of `compare --format json` with its nested values flat:
  graph, series, name, parent, occurrence   the series' key, as in executions()
  base_count, base_p50, new_count, new_p50  each run's counted values and median ("base" and
                                            "new" in JSON)
  shift          the Hodges-Lehmann shift, new - base, in the log's unit
  changePercent  the shift in percent of the base median
  interval_low, interval_high  its (1 - 2 alpha) interval, in percent ("interval" in JSON)
  pValue, pAdjusted (Holm), qValue (Benjamini-Hochberg)
  verdict        "slower", "faster", "same", "unsure", "added" or "removed"
  needed_base, needed_new  unsure rows: the executions each run needs beyond those it has
                           before the row would decide
Missing where JSON has null.

attrs: base, new, unit, alpha, threshold, minChange, relative, skipFirst, graphs (each graph's
run-wide shift: name, shift, changePercent, interval_low, interval_high, ratio) and totals
(slower, faster, same, unsure, added, removed, tested), partial ({"base": ..., "new": ...},
each as in executions()).

alpha (above 0, below 0.5), threshold (percent), min_change (log units) and relative are the
command's --alpha, --threshold, --min-change and --relative. Raises LogError as executions()
does, its first line opened by "base log" or "new log"; FileNotFoundError and ValueError too.)");

  module.def(
      "summary", [](const Path& path) { return runReader<KvtProfileLogReader>(path, ""); },
      py::arg("path"),
      R"(The reader's statistics summary of the log, the text the viewer prints with
`--reader csv` and no output: parse warnings, then every section of the summary.
Raises LogError with the reader's message when it refuses the log.)");

  module.def(
      "trace",
      [](const Path& path, const Path& output) {
        return runReader<KvtProfileLogReaderChrometrace>(path, output.string());
      },
      py::arg("path"), py::arg("output"),
      R"(Writes the log's Chrome Trace Event Format file to output, as the viewer does, and
returns what the viewer prints with it (parse warnings and the run and execute statistics).
Raises LogError with the reader's message when it refuses the log or cannot write output.)");
}
