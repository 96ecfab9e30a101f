// Executions are streamed, never kept: the trace reader only folds each into its graph's average,
// the CSV reader also writes its rows to temporary files as it comes. Neither may change what an
// execution contributes: the averaged model and what the parse prints must not tell the two
// readers apart, and the CSV rows must be those of every execution in graph order.
#include "plugin/KvtProfileLogReader.h"
#include "support/CollectedExecutions.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"
#include "text/CsvLog.h"
#include "text/CsvRows.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace kvt::profiling {
namespace {

namespace fs = std::filesystem;

// Every field of every record, a line each, children indented beneath their parent:
// "a=7:164 u1 t404 @5 x2 'text' <1,2,>" (payload:data type, unit, type, timestamp, count).
std::string recordsText(const EventList& events, int depth = 1) {
  std::ostringstream out;
  for (const EventRecord& r : events) {
    out << '\n'
        << std::string(size_t(depth) * 2, ' ') << r.identifier << '=' << r.value.payload << ':'
        << std::hex << r.value.dataType << std::dec << " u" << r.unit << " t" << r.eventType << " @"
        << r.timestamp << " x" << r.count << " '" << r.message << "' <";
    for (uint8_t byte : r.bytes)
      out << int(byte) << ',';
    out << '>' << recordsText(r.children, depth + 1);
  }
  return out.str();
}

// Every part of the model after a parse, one a line.
std::string modelText(const EventModel& model) {
  std::ostringstream out;
  for (const TimingPair& pair : {model.initTiming, model.unnamedTiming, model.composeGraphsTiming})
    out << pair.timestamp << '/' << pair.duration << '\n';
  for (const RunLevelSlot* slot :
       {&model.initSlot, &model.executeOverallSlot, &model.deinitSlot, &model.libLoadSlot})
    out << "slot " << slot->timestamp << '/' << slot->duration << ' ' << slot->present
        << recordsText(slot->events) << '\n';
  out << "init " << model.hasInitEvents << recordsText(model.initEvents) << "\nflags "
      << model.hasFinalize << model.hasFinalizeEvents << model.queueWaitMode
      << model.hasCombinedExecute << '\n';
  for (const auto& [graph, entry] : model.finalizeByGraph)
    out << "finalize " << graph << ' ' << entry.timestamp << '/' << entry.duration
        << recordsText(entry.events) << '\n';
  for (const auto& [graph, average] : model.averageExecutionByGraph)
    out << "average " << graph << ' ' << average.timestamp << '/' << average.duration
        << recordsText(average.events) << '\n';
  for (const auto& [graph, queueWaits] : model.queueWaitByGraph) {
    out << "queue waits " << graph;
    for (uint64_t queueWait : queueWaits)
      out << ' ' << queueWait;
    out << '\n';
  }
  return out.str();
}

// The parse's result, what it printed and the averaged model, as one text.
std::string parseWith(KvtProfileLogReader& reader) {
  const testing::StdoutCapture printed;
  const bool parsed = reader.parseLog(false);
  return (parsed ? "parsed\n" : "refused\n") + printed.text() + modelText(reader.eventModel());
}

// The lines of a CSV event log whose method is EXECUTE.
std::string executeRowsOf(const std::string& csv) {
  std::istringstream lines(csv);
  std::string rows;
  for (std::string line; std::getline(lines, line);)
    if (line.find(",EXECUTE,") == line.find(','))
      rows += line + '\n';
  return rows;
}

// The rows the kept executions would give, graph after graph.
std::string rowsOfKept(const testing::ExecutionsByGraph& executions) {
  std::ostringstream rows;
  rows << std::fixed;
  size_t graphNumber = 0;
  for (const auto& [graph, graphExecutions] : executions) {
    const std::string identifier = graphIdentifier(graphNumber++, graph);
    for (const ExecutionEntry& execution : graphExecutions)
      writeExecutionRows(rows, identifier, execution, writeBackendCsvRows);
  }
  return rows.str();
}

// Parses the log with both readers; the CSV reader's rows are also checked against every
// execution it was handed.
void expectStreamedAlike(const std::string& path,
                         VisibilityLevel level = VisibilityLevel::keepAll) {
  KvtProfileLogReader csvReader(path, level);
  testing::CollectedExecutions kept;
  csvReader.addExecutionConsumer(kept.consumer());
  KvtProfileLogReaderChrometrace traceReader(path, level);
  const std::string csvParse = parseWith(csvReader);
  EXPECT_EQ(parseWith(traceReader), csvParse);
  if (csvParse.starts_with("parsed")) {
    const testing::TempDir dir;
    const fs::path csvPath = dir.path() / "events.csv";
    const testing::StdoutCapture summary;
    EXPECT_TRUE(csvReader.writeOutputs(csvPath.string()));
    const std::string csv = testing::readFile(csvPath);
    EXPECT_EQ(executeRowsOf(csv), testing::asWrittenInTextMode(rowsOfKept(kept.byGraph)));
    EXPECT_TRUE(csvReader.writeOutputs(csvPath.string())); // the rows are read back again
    EXPECT_EQ(testing::readFile(csvPath), csv);
  }
}

TEST(StreamedExecutions, FixtureAndGoldenLogs) {
  const std::vector<std::string> logs = testing::fixtureAndGoldenLogs();
  ASSERT_GT(logs.size(), 10u);
  for (const std::string& log : logs) {
    SCOPED_TRACE(log);
    expectStreamedAlike(log);
  }
}

} // namespace
} // namespace kvt::profiling
