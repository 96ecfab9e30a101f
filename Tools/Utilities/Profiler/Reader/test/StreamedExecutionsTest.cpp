// Executions are streamed, never kept: the trace reader only folds each into its graph's average,
// the CSV reader also writes its rows to temporary files as it comes. Neither may change what an
// execution contributes: the averaged model and what the parse prints must not tell the two
// readers apart, and the CSV rows must be those of every execution in graph order.
#include "log/LogWriter.h"
#include "plugin/KvtProfileLogReader.h"
#include "support/CollectedExecutions.h"
#include "support/ModelText.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"
#include "text/CsvLog.h"
#include "text/CsvRows.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
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

// The model with the averages in full.
std::string averagedModelText(const EventModel& model) {
  std::string text = testing::modelText(model);
  for (const auto& [graph, average] : model.averageExecutionByGraph)
    text += "\naverage " + graph + ':' + recordsText(average.events);
  return text;
}

struct Parse {
  bool parsed = false;
  std::string printed;
  std::string averagedModel;
};

Parse parseWith(KvtProfileLogReader& reader) {
  Parse parse;
  {
    const testing::StdoutCapture capture;
    parse.parsed = reader.parseLog(false);
    parse.printed = capture.text();
  }
  parse.averagedModel = averagedModelText(reader.eventModel());
  return parse;
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
  const Parse csvParse = parseWith(csvReader);
  const Parse traceParse = parseWith(traceReader);
  EXPECT_EQ(traceParse.parsed, csvParse.parsed);
  EXPECT_EQ(traceParse.printed, csvParse.printed);
  EXPECT_EQ(traceParse.averagedModel, csvParse.averagedModel);
  if (csvParse.parsed) {
    const testing::TempDir dir;
    const fs::path csvPath = dir.path() / "events.csv";
    const testing::StdoutCapture summary;
    EXPECT_TRUE(csvReader.writeOutputs(csvPath.string()));
    EXPECT_EQ(executeRowsOf(testing::readFile(csvPath)),
              testing::asWrittenInTextMode(rowsOfKept(kept.byGraph)));
  }
  return kept.byGraph;
}

std::vector<std::string> logsIn(const fs::path& dir) {
  std::vector<std::string> logs;
  for (const fs::directory_entry& entry : fs::directory_iterator(dir))
    if (entry.path().extension() == ".log")
      logs.push_back(entry.path().string());
  std::sort(logs.begin(), logs.end());
  return logs;
}

TEST(StreamedExecutions, FixtureAndGoldenLogs) {
  std::vector<std::string> logs = logsIn(KVT_FIXTURE_DIR);
  const std::vector<std::string> golden = logsIn(KVT_GOLDEN_LOG_DIR);
  logs.insert(logs.end(), golden.begin(), golden.end());
  ASSERT_GT(logs.size(), 10u);
  for (const std::string& log : logs) {
    SCOPED_TRACE(log);
    expectStreamedAlike(log);
  }
}

// How the executions of a synthetic run carry queue-wait events (type 405).
enum class QueueWaits { none, everyExecution, oneMissing, oneDoubled };

struct RunShape {
  uint32_t seed = 1;
  int graphs = 3;
  int executions = 12; // per graph, interleaved
  int width = 6;       // top-level events of an execution, at most
  QueueWaits queueWaits = QueueWaits::none;
  bool combined = false; // type 9 messages with init and finalize events among the others
};

// A run whose executions share some identifiers and not others, leave fields out, repeat
// identifiers and nest up to three deep, with values of every type.
class SyntheticRun {
public:
  explicit SyntheticRun(const RunShape& shape) : shape(shape), random(shape.seed) {}

  std::vector<ChunkSpec> chunks() {
    std::vector<ChunkSpec> chunks(3);
    for (int execution = 0; execution < shape.executions; ++execution)
      for (int graph = 0; graph < shape.graphs; ++graph)
        addMessage(chunks[size_t(pick(0, 2))], graph, execution);
    return chunks;
  }

private:
  int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }

  EventSpec event(int depth) {
    EventSpec described;
    if (pick(0, 5) != 0)
      described.identifier = "e" + std::to_string(pick(0, depth == 0 ? 30 : 4));
    const uint32_t types[] = {0, 404, 5001, 7};
    described.eventType = types[pick(0, 3)];
    switch (pick(0, 6)) {
    case 1:
      described.valueType = 1;
      described.valueI64 = -pick(0, 1000);
      break;
    case 2:
      described.valueType = 3;
      described.valueF32 = float(pick(0, 100)) / 4;
      break;
    case 3:
      described.valueType = 4;
      described.valueBytes = std::vector<uint8_t>(size_t(pick(0, 3)), uint8_t(pick(0, 255)));
      break;
    case 4:
      described.valueType = 5;
      described.valueF64 = pick(0, 100) / 8.0;
      break;
    case 5:
      described.valueType = 9; // unknown: read as value_u64
      described.valueU64 = uint64_t(pick(0, 50));
      break;
    default:
      described.valueU64 = uint64_t(pick(0, 100000));
      break;
    }
    if (pick(0, 1))
      described.unit = uint32_t(pick(0, 5));
    if (pick(0, 3) == 0)
      described.message = "m" + std::to_string(pick(0, 3));
    described.timestamp = uint64_t(pick(0, 1000));
    if (depth < 3 && pick(0, 2) == 0) {
      described.children.emplace();
      for (int i = pick(0, depth == 0 ? 20 : 4); i > 0; --i)
        described.children->push_back(event(depth + 1));
    }
    return described;
  }

  EventSpec queueWait() {
    EventSpec described;
    described.identifier = "queue wait";
    described.eventType = 405;
    described.valueU64 = uint64_t(pick(1, 400));
    return described;
  }

  void addMessage(ChunkSpec& chunk, int graph, int execution) {
    MessageSpec message;
    message.stampTimestamp = uint64_t(execution * 100 + graph);
    message.methodType = int8_t(shape.combined ? 9 : shape.queueWaits == QueueWaits::none ? 1 : 3);
    message.timing = TimingSpec{uint64_t(pick(0, 50)), uint64_t(pick(0, 900))};
    message.visibility = int8_t(pick(0, 9) == 0 ? 127 : 0); // a few are filtered out
    message.graphName = "graph " + std::to_string(graph);
    std::vector<EventSpec> events;
    for (int i = pick(0, shape.width); i > 0; --i)
      events.push_back(event(0));
    if (shape.combined) {
      events.insert(events.begin() + pick(0, int(events.size())), event(1));
      events.back().eventType = uint32_t(pick(0, 1) ? 100 : 300);
    }
    addQueueWaits(events, graph, execution);
    message.events = std::move(events);
    if (!chunk.messages)
      chunk.messages.emplace();
    chunk.messages->push_back(std::move(message));
  }

  // Top level or one below, as an execution may carry it.
  void addQueueWaits(std::vector<EventSpec>& events, int graph, int execution) {
    const bool last = graph == shape.graphs - 1 && execution == shape.executions - 1;
    int count = shape.queueWaits == QueueWaits::none ? 0 : 1;
    if (last && shape.queueWaits == QueueWaits::oneMissing)
      count = 0;
    if (last && shape.queueWaits == QueueWaits::oneDoubled)
      count = 2;
    for (int i = 0; i < count; ++i) {
      if (!events.empty() && pick(0, 1)) {
        EventSpec& holder = events[size_t(pick(0, int(events.size()) - 1))];
        if (!holder.children)
          holder.children.emplace();
        holder.children->push_back(queueWait());
      } else {
        events.push_back(queueWait());
      }
    }
  }

  RunShape shape;
  std::mt19937 random;
};

TEST(StreamedExecutions, SyntheticRuns) {
  struct Case {
    const char* what;
    RunShape shape;
  };
  const Case cases[] = {
      {"sparse records of every value type over interleaved graphs", {.seed = 1}},
      {"a wide top level, indexed rather than searched", {.seed = 2, .graphs = 2, .width = 60}},
      {"one graph, many executions", {.seed = 3, .graphs = 1, .executions = 80}},
      {"a queue wait in every execution", {.seed = 4, .queueWaits = QueueWaits::everyExecution}},
      {"the last execution without its queue wait",
       {.seed = 5, .queueWaits = QueueWaits::oneMissing}},
      {"the last execution with two queue waits",
       {.seed = 6, .queueWaits = QueueWaits::oneDoubled}},
      {"combined messages with init and finalize events", {.seed = 7, .combined = true}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::vector<ChunkSpec> chunks = SyntheticRun(c.shape).chunks();
    const testing::TempDir dir;
    const std::string log = dir.write("run.log", buildLog(chunks));
    EXPECT_EQ(expectStreamedAlike(log).size(), size_t(c.shape.graphs));
    expectStreamedAlike(log, VisibilityLevel{1});
  }
}

} // namespace
} // namespace kvt::profiling
