// The order of the run: the main log, the floor and both readers on it, then the scaling series.
// Every log is deleted as soon as its measurements are done.
#include "Benchmark.h"

#include "BenchReport.h"
#include "Calibration.h"
#include "ChildRun.h"
#include "ComparisonTiming.h"
#include "FloorWalk.h"
#include "HistoryCalibration.h"
#include "LogSynthesis.h"
#include "ReadThreads.h"
#include "ReaderHost.h"
#include "ReportTarget.h"
#include "reports/StatsReport.h"
#include "statistics/StatisticsPass.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <optional>
#include <sstream>
#include <vector>

#include <unistd.h>

namespace kvt::profiling {

namespace {

namespace fs = std::filesystem;

// 1, 2 and the hardware's threads, each once.
std::vector<unsigned> threadCounts() {
  std::vector<unsigned> counts{1, 2, hardwareThreads()};
  std::sort(counts.begin(), counts.end());
  counts.erase(std::unique(counts.begin(), counts.end()), counts.end());
  return counts;
}

constexpr uint32_t graphSteps = 64; // steps of an execution of the main log and series
constexpr uint32_t mainGraphs = 4;
constexpr uint32_t mainMessagesPerChunk = 128;  // chunks of about 4 MiB
constexpr uint32_t seriesMessagesPerChunk = 16; // chunks of equal size in every log of the series
constexpr uint32_t wideSteps = 10000;           // distinct identifiers on one level
constexpr uint32_t wideMessagesPerChunk = 1;    // chunks of about 5 MiB
constexpr uint32_t pageSteps = 2000;            // the comparison page's graph: 4,002 series a run

// The directory of the logs and outputs; one made here is removed with everything in it.
class WorkDir {
public:
  explicit WorkDir(const std::string& requested) {
    if (!requested.empty()) {
      path = requested;
      fs::create_directories(path);
      return;
    }
    path = fs::temp_directory_path() / ("kvt-profile-bench-" + std::to_string(getpid()));
    fs::create_directories(path);
    owned = true;
  }
  WorkDir(const WorkDir&) = delete;
  WorkDir& operator=(const WorkDir&) = delete;
  ~WorkDir() {
    std::error_code ignored;
    if (owned)
      fs::remove_all(path, ignored);
  }

  std::string file(const std::string& name) const { return (path / name).string(); }

private:
  fs::path path;
  bool owned = false;
};

// A log synthesised for the run, deleted when it goes.
class BenchLog {
public:
  explicit BenchLog(std::string path) : path(std::move(path)) {}
  BenchLog(const BenchLog&) = delete;
  BenchLog& operator=(const BenchLog&) = delete;
  ~BenchLog() {
    std::error_code ignored;
    fs::remove(path, ignored);
  }

  const std::string path;
};

class BenchRun {
public:
  BenchRun(const BenchOptions& options, const BenchTools& tools)
      : options(options), tools(tools), dir(options.workDir) {}

  bool run() {
    return runMain() && runComparisonPage() && runScaling() &&
           runCalibration(options.calibration, dir.file("")) &&
           runHistoryCalibration(options.history, dir.file(""));
  }

private:
  bool runMain() {
    const SynthShape shape{mainGraphs, options.executions, graphSteps, mainMessagesPerChunk};
    const BenchLog log(dir.file("main.log"));
    if (!synthesizeLog(tools.logTool, shape, log.path))
      return false;
    LogWalk walk;
    const std::optional<Measured> floor = measureFloor(log.path, walk);
    if (!floor)
      return false;
    const uint64_t logBytes = fs::file_size(log.path);
    printInput(std::to_string(shape.graphs) + " graphs x " + std::to_string(shape.executions) +
                   " executions x " + std::to_string(shape.steps) + " steps with sub-events",
               logBytes, walk, options.runs, options.csvRuns);
    printTargetHeader();
    printTarget("floor", *floor, logBytes, *floor);
    const std::optional<Measured> trace =
        measureReader(tools.traceLibrary, log.path, "trace.json", options.runs);
    if (!trace)
      return false;
    printTarget("trace reader", *trace, logBytes, *floor);
    // The readers stay on their caller's thread; the tools may verify ahead on the others. The
    // other tools' rows and ratios are at their default, one thread, as is stats' first row.
    std::optional<Measured> stats;
    for (const unsigned threads : threadCounts()) {
      const std::optional<Measured> threaded = measureStatistics(log.path, threads);
      if (!threaded)
        return false;
      printTarget("stats " + std::to_string(threads) + (threads == 1 ? " thread" : " threads"),
                  *threaded, logBytes, *floor);
      if (threads == 1)
        stats = threaded;
    }
    std::string pageSize;
    const std::optional<Measured> report = measureReport(log.path, pageSize);
    if (!report)
      return false;
    printTarget("report", *report, logBytes, *floor);
    ComparisonTiming comparison;
    const std::optional<Measured> compare = measureComparison(log.path, comparison);
    if (!compare)
      return false;
    printTarget("compare", *compare, 2 * logBytes, *floor);
    const std::optional<Measured> csv =
        measureReader(tools.csvLibrary, log.path, "events.csv", options.csvRuns);
    if (!csv)
      return false;
    printTarget("CSV reader", *csv, logBytes, *floor);
    if (!measureTables(log.path, logBytes, *floor, *stats))
      return false;
    printReportPage(pageSize, *report, *stats);
    printComparisonNote(comparison);
    return true;
  }

  // kvt-profile-log report NEW --base BASE on two runs of one graph of pageSteps steps: the page's
  // size and the time to write it.
  bool runComparisonPage() {
    SynthShape shape{1, options.pageExecutions, pageSteps, seriesMessagesPerChunk};
    const BenchLog base(dir.file("page-base.log"));
    const BenchLog next(dir.file("page-new.log"));
    if (!synthesizeLog(tools.logTool, shape, base.path))
      return false;
    shape.noiseSeed = 2;
    if (!synthesizeLog(tools.logTool, shape, next.path))
      return false;
    const std::string page = dir.file("comparison.html");
    std::string pageSize;
    const std::optional<Measured> written = measureBest(
        options.runs,
        [&](std::string& findings) {
          return writeBenchComparisonPage(base.path, next.path, page, findings);
        },
        [&](const std::string& findings) {
          pageSize = findings;
          std::error_code ignored;
          fs::remove(page, ignored);
        });
    if (!written)
      return false;
    printComparisonPage("2 runs x 1 graph x " + std::to_string(pageSteps) + " steps x " +
                            std::to_string(shape.executions) + " executions",
                        pageSize, *written);
    return true;
  }

  // The long table of executions: the CSV export and the Python frame (TableTargets.h).
  bool measureTables(const std::string& logPath, uint64_t logBytes, const Measured& floor,
                     const Measured& stats) {
    const std::string rows = dir.file("executions.csv");
    const std::optional<Measured> exported = measureBest(
        options.csvRuns, [&](std::string&) { return exportExecutionsCsv(logPath, rows); },
        [&](const std::string&) {
          std::error_code ignored;
          fs::remove(rows, ignored);
        });
    if (!exported)
      return false;
    printTarget("executions CSV", *exported, logBytes, floor);
    if (tools.python.python.empty()) {
      printFrameSkipped();
      return true;
    }
    const std::optional<FrameMeasured> frame = measureFrame(tools.python, logPath);
    if (!frame) {
      std::fprintf(stderr, "kvt-profile-bench: the Python frame could not be measured\n");
      return false;
    }
    printFrame(*frame, logBytes, floor, stats);
    return true;
  }

  bool runScaling() {
    printScalingHeader();
    for (const uint64_t factor : {10, 100, 1000}) {
      const uint64_t executions = factor * options.scalingBase;
      if (!runScalingRow(std::to_string(factor) + "x",
                         {1, executions, graphSteps, seriesMessagesPerChunk}, true))
        return false;
    }
    // Its event log would be several times the 5 GB log: the trace reader only.
    return runScalingRow("wide level", {1, options.wideExecutions, wideSteps, wideMessagesPerChunk},
                         false);
  }

  bool runScalingRow(const std::string& label, const SynthShape& shape, bool withCsv) {
    const BenchLog log(dir.file("scaling.log"));
    if (!synthesizeLog(tools.logTool, shape, log.path))
      return false;
    LogWalk walk;
    const std::optional<Measured> floor = measureFloor(log.path, walk);
    const std::optional<Measured> trace =
        floor ? measureReader(tools.traceLibrary, log.path, "trace.json", options.runs)
              : std::nullopt;
    if (!trace)
      return false;
    std::optional<Measured> csv;
    if (withCsv) {
      csv = measureReader(tools.csvLibrary, log.path, "events.csv", options.csvRuns);
      if (!csv)
        return false;
    }
    printScalingRow(label, shape.executions, shape.steps, fs::file_size(log.path), walk, *floor,
                    *trace, csv);
    return true;
  }

  // The floor on the log; its walk's counts go to walk.
  std::optional<Measured> measureFloor(const std::string& logPath, LogWalk& walk) {
    return measureBest(
        options.runs,
        [&](std::string& findings) {
          const std::optional<LogWalk> walked = walkLog(logPath);
          if (walked)
            findings.assign(reinterpret_cast<const char*>(&*walked), sizeof *walked);
          return walked.has_value();
        },
        [&](const std::string& findings) {
          if (findings.size() == sizeof walk)
            std::memcpy(&walk, findings.data(), sizeof walk);
        });
  }

  std::optional<Measured> measureReader(const std::string& library, const std::string& logPath,
                                        const std::string& outputName, uint32_t runs) {
    const std::string output = dir.file(outputName);
    return measureBest(
        runs, [&](std::string&) { return runReaderLibrary(library, logPath, output); },
        [&](const std::string&) {
          std::error_code ignored;
          fs::remove(output, ignored); // outside the measurement: a large file takes a while
        });
  }

  // kvt-profile-log stats as the tool runs it on threads: the pass and the table, which is
  // discarded.
  std::optional<Measured> measureStatistics(const std::string& logPath, unsigned threads) {
    return measureBest(
        options.runs,
        [&](std::string&) {
          setenv("KVT_PROFILER_THREADS", std::to_string(threads).c_str(), 1); // in the child
          RunStatistics run;
          if (!readRunStatistics(logPath, {}, run))
            return false;
          std::ostringstream discarded;
          writeStatsTable(discarded, run, {});
          return true;
        },
        [](const std::string&) {});
  }

  // kvt-profile-log report as the tool runs it; the page's size goes to pageSize.
  std::optional<Measured> measureReport(const std::string& logPath, std::string& pageSize) {
    const std::string page = dir.file("report.html");
    return measureBest(
        options.runs,
        [&](std::string& findings) { return writeBenchReport(logPath, page, findings); },
        [&](const std::string& findings) {
          pageSize = findings;
          std::error_code ignored;
          fs::remove(page, ignored);
        });
  }

  // kvt-profile-log compare of the log with a copy of itself: both passes, the comparison and its
  // table; the comparison's own time of the fastest run goes to timing.
  std::optional<Measured> measureComparison(const std::string& logPath, ComparisonTiming& timing) {
    return measureBest(
        options.runs,
        [&](std::string& findings) { return runComparison(logPath, logPath, findings); },
        [&](const std::string& findings) {
          const ComparisonTiming run = readComparisonTiming(findings);
          if (timing.series == 0 || run.comparisonSeconds < timing.comparisonSeconds)
            timing = run;
        });
  }

  // The fastest of runs children; none when any of them failed. afterEach sees each run's
  // findings once the child has ended.
  std::optional<Measured> measureBest(uint32_t runs, const std::function<bool(std::string&)>& work,
                                      const std::function<void(const std::string&)>& afterEach) {
    std::optional<Measured> best;
    for (uint32_t run = 0; run < runs; ++run) {
      const ChildMeasurement measurement = measureInChild(work);
      afterEach(measurement.findings);
      if (!measurement.succeeded) {
        std::fprintf(stderr, "kvt-profile-bench: a measured run failed\n");
        return std::nullopt;
      }
      const uint64_t peak = best ? best->peakResidentBytes : 0;
      if (!best || measurement.seconds < best->seconds)
        best = Measured{measurement.seconds, measurement.cpuSeconds, 0};
      best->peakResidentBytes = std::max(peak, measurement.peakResidentBytes);
    }
    return best;
  }

  const BenchOptions& options;
  const BenchTools& tools;
  const WorkDir dir;
};

} // namespace

int runBenchmark(const BenchOptions& options, const BenchTools& tools) {
  return BenchRun(options, tools).run() ? 0 : 1;
}

} // namespace kvt::profiling
