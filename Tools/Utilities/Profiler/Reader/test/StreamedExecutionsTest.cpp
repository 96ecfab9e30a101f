// Executions are streamed, never kept: the trace reader only folds each into its graph's average,
// the CSV reader also writes its rows to temporary files as it comes. Neither may change what an
// execution contributes: the averaged model and what the parse prints must not tell the two
// readers apart, and the CSV rows must be those of every execution in graph order.
#include "log/LogWriter.h"
#include "plugin/KvtProfileLogReader.h"
#include "support/CollectedExecutions.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"
#include "text/CsvLog.h"
#include "text/CsvRows.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <random>
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
// execution it was handed. Returns the executions.
testing::ExecutionsByGraph expectStreamedAlike(const std::string& path,
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
    EXPECT_EQ(executeRowsOf(testing::readFile(csvPath)),
              testing::asWrittenInTextMode(rowsOfKept(kept.byGraph)));
  }
  return kept.byGraph;
}

TEST(StreamedExecutions, FixtureAndGoldenLogs) {
  const std::vector<std::string> logs = testing::fixtureAndGoldenLogs();
  ASSERT_GT(logs.size(), 10u);
  for (const std::string& log : logs) {
    SCOPED_TRACE(log);
    expectStreamedAlike(log);
  }
}

// A run of interleaved graphs over three chunks whose executions share some identifiers and not
// others, repeat them, leave fields out, nest and carry values of every type. Queue waits and
// combined executions are the golden cases' part.
struct RunShape {
  uint32_t seed = 1;
  int graphs = 3;
  int executions = 12; // per graph
};

// The list an optional holds, created empty on first use.
template <typename T> std::vector<T>& listOf(std::optional<std::vector<T>>& list) {
  if (!list)
    list.emplace();
  return *list;
}

// "e7" from "e" and 7.
std::string numbered(std::string prefix, int number) {
  return prefix += std::to_string(number);
}

std::vector<ChunkSpec> syntheticRun(const RunShape& shape) {
  std::mt19937 random(shape.seed);
  auto pick = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  std::function<EventSpec(int)> event = [&](int depth) {
    EventSpec e;
    if (pick(0, 5) != 0)
      e.identifier = numbered("e", pick(0, depth == 0 ? 30 : 4));
    e.eventType = std::array<uint32_t, 4>{0, 404, 5001, 7}[size_t(pick(0, 3))];
    if (const int valueType = pick(0, 7); valueType < 7) // 6: unknown, read as value_u64
      e.valueType = uint32_t(valueType);
    e.valueU64 = uint64_t(pick(0, 100000));
    e.valueI64 = -pick(0, 1000);
    e.valueF32 = float(pick(0, 100)) / 4;
    e.valueF64 = pick(0, 100) / 8.0;
    if (e.valueType == 4)
      e.valueBytes = std::vector<uint8_t>(size_t(pick(0, 3)), uint8_t(pick(0, 255)));
    if (pick(0, 1))
      e.unit = uint32_t(pick(0, 5));
    if (pick(0, 3) == 0)
      e.message = numbered("m", pick(0, 3));
    if (depth < 3 && pick(0, 2) == 0)
      for (int i = pick(0, depth == 0 ? 20 : 4); i > 0; --i)
        listOf(e.children).push_back(event(depth + 1));
    return e;
  };
  std::vector<ChunkSpec> chunks(3);
  for (int execution = 0; execution < shape.executions; ++execution)
    for (int graph = 0; graph < shape.graphs; ++graph) {
      MessageSpec message;
      message.stampTimestamp = uint64_t(execution * 100 + graph);
      message.methodType = 1;
      message.timing = TimingSpec{uint64_t(pick(0, 50)), uint64_t(pick(0, 900))};
      message.visibility = int8_t(pick(0, 9) == 0 ? 127 : 0); // a few are filtered out
      message.graphName = numbered("graph ", graph);
      for (int i = pick(0, 6); i > 0; --i)
        listOf(message.events).push_back(event(0));
      listOf(chunks[size_t(pick(0, 2))].messages).push_back(std::move(message));
    }
  return chunks;
}

TEST(StreamedExecutions, SyntheticRuns) {
  struct Case {
    const char* what;
    RunShape shape;
  };
  const Case cases[] = {
      {"sparse records of every value type over interleaved graphs", {.seed = 1}},
      {"one graph, many executions", {.seed = 3, .graphs = 1, .executions = 80}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const testing::TempDir dir;
    const std::string log = dir.write("run.log", buildLog(syntheticRun(c.shape)));
    EXPECT_EQ(expectStreamedAlike(log).size(), size_t(c.shape.graphs));
    expectStreamedAlike(log, VisibilityLevel{1});
  }
}

} // namespace
} // namespace kvt::profiling
