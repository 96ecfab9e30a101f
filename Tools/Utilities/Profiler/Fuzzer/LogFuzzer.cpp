// Feeds arbitrary bytes to both readers as a log file: parse, then every output into a
// scratch directory; then the statistics pass, every statistics report, comparisons, the
// execution table in each form and the report page's data. Any crash, leak, hang or runaway
// allocation is a finding.
#include "PageComparison.h"
#include "ReportData.h"
#include "RunFigures.h"
#include "plugin/KvtProfileLogReader.h"
#include "reports/CompareReport.h"
#include "reports/StatsReport.h"
#include "statistics/StatisticsPass.h"
#include "tables/ExecutionColumns.h"
#include "tables/ExecutionText.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <unistd.h>

namespace {

using namespace kvt::profiling;

// Memory-backed when the machine has it: the input and outputs are rewritten on every run.
const std::filesystem::path& scratchDir() {
  static const std::filesystem::path dir = [] {
    const std::filesystem::path root = std::filesystem::is_directory("/dev/shm")
                                           ? std::filesystem::path("/dev/shm")
                                           : std::filesystem::temp_directory_path();
    auto path = root / ("kvt-log-fuzzer-" + std::to_string(getpid()));
    std::filesystem::create_directories(path);
    return path;
  }();
  return dir;
}

// Parses the log and writes the reader's outputs; what they print is thrown away.
void runReader(KvtProfileLogReader& reader, const std::string& outputPath) {
  std::ostringstream discarded;
  reader.printTo(discarded);
  if (reader.parseLog(false)) {
    reader.printHeaderDetails();
    reader.writeOutputs(outputPath);
  }
}

// A chunk cut short is zero-padded to its claimed size, up to 2 GiB; padding that happens to
// verify can make strings of that size, costing memory and time in proportion to the claim,
// not to the input. Claims beyond this much padding only scale that cost, so they are skipped.
constexpr uint64_t maxPaddingBytes = 16 << 20;

bool claimsLittlePadding(const uint8_t* data, size_t size) {
  uint64_t offset = 0;
  while (offset + 4 <= size) {
    const uint64_t claimed = uint64_t(data[offset]) | uint64_t(data[offset + 1]) << 8 |
                             uint64_t(data[offset + 2]) << 16 | uint64_t(data[offset + 3]) << 24;
    offset += 4;
    if (claimed > size - offset + maxPaddingBytes)
      return false;
    offset += claimed;
  }
  return true;
}

// A copy of a run whose values are moved: a third of them mirrored towards 2^64, the rest an
// eighth larger, so that comparisons meet shifts, ties and the largest values.
RunStatistics perturbed(RunStatistics run) {
  auto move = [](Series& series) {
    for (size_t i = 0; i < series.values.size(); ++i) {
      uint64_t& value = series.values[i];
      value = i % 3 == 0 ? UINT64_MAX - value : value + std::min(value / 8, UINT64_MAX - value);
    }
    std::sort(series.values.begin(), series.values.end());
  };
  for (GraphStatistics& graph : run.graphs)
    forEachSeries(graph, move);
  return run;
}

void writeComparison(std::ostream& out, const RunStatistics& base, const RunStatistics& next,
                     const ComparisonOptions& options, const std::string& logPath) {
  const Comparison comparison = compareRuns(base, next, options);
  writeComparisonTable(out, comparison);
  writeComparisonJson(out, comparison, logPath, logPath);
}

// The report page's data of the run alone, and compared with other.
void writePageData(std::ostream& out, const RunFigures& figures, const RunStatistics& run,
                   const RunStatistics& other) {
  ReportInput input{"fuzzed", 1, figures, std::nullopt, std::nullopt};
  writeReportData(out, input);
  input.comparison = figurePageComparison(run, other, {});
  writeReportData(out, input);
}

// The statistics of the log, every report of them, its comparison with itself and with a
// perturbed copy, plainly and net of the run-wide shift, and the report page's data.
void runStatistics(const std::string& logPath) {
  StatisticsOptions pass;
  pass.skipFirst = 1;
  RunStatistics run;
  RunFigures figures;
  if (!readRunFigures(logPath, pass, run, figures))
    return;
  std::ostringstream discarded;
  writeStatsTable(discarded, run, {StepOrder::name, 3});
  writeStatsJson(discarded, run, logPath, 1);
  writeStatsCsv(discarded, run);
  writeComparison(discarded, run, run, {}, logPath);
  const RunStatistics other = perturbed(run);
  writeComparison(discarded, run, other, {}, logPath);
  writeComparison(discarded, other, run, {0.2, 0, 10, true}, logPath);
  writePageData(discarded, figures, run, other);
}

// Every execution's values as text in each format and as a data frame's columns.
void runExecutionTable(const std::string& logPath) {
  const ExecutionRowOptions options{VisibilityLevel::keepAll, 1};
  for (const ExecutionTextFormat format : {ExecutionTextFormat::csv, ExecutionTextFormat::jsonl})
    writeExecutionText(logPath, options, format, [](std::string_view) { return true; });
  ExecutionColumnBuilder columns;
  readExecutionColumns(logPath, options, columns);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!claimsLittlePadding(data, size))
    return -1; // not added to the corpus
  const std::string logPath = (scratchDir() / "input.log").string();
  {
    std::ofstream log(logPath, std::ios::binary | std::ios::trunc);
    log.write(reinterpret_cast<const char*>(data), std::streamsize(size));
  }
  KvtProfileLogReaderChrometrace traceReader(logPath, VisibilityLevel::keepAll);
  runReader(traceReader, (scratchDir() / "trace.json").string());
  KvtProfileLogReader csvReader(logPath, VisibilityLevel::keepAll);
  runReader(csvReader, (scratchDir() / "events.csv").string());
  runStatistics(logPath);
  runExecutionTable(logPath);
  return 0;
}
