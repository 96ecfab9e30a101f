// The CSV event log from hand-built event models: row forms, graph numbering, the inference
// rate, back-end rows, and the output frame around the file and the summary.
#include "text/CsvLog.h"
#include "model/EventModel.h"
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/EventRecords.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"
#include "text/BackendReport.h"
#include "text/Units.h"

#include <gtest/gtest.h>

#include <bit>
#include <filesystem>
#include <iostream>
#include <sstream>

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;
using testing::eventRecord;
using testing::readFile;
using testing::StdoutCapture;
using testing::TempDir;
using testing::unitMicroseconds;

EventRecord valueEvent(const char* identifier, uint32_t dataType, uint64_t payload) {
  EventRecord record = eventRecord(identifier, payload);
  record.value.dataType = dataType;
  return record;
}

ReportContext contextOf(const EventModel& model, const LogHeaderDetails& header) {
  return ReportContext{model, header, "",
                       [](std::ostream& out, const EventList& events) {
                         writeBackendReportLines(out, events, false);
                       },
                       writeBackendCsvRows};
}

std::string csvLogOf(const EventModel& model, const LogHeaderDetails& header = {}) {
  std::ostringstream out;
  writeCsvLog(out, contextOf(model, header));
  return out.str();
}

// The data rows: everything after the three version lines and the column header.
std::string dataRowsOf(const EventModel& model) {
  const std::string csv = csvLogOf(model);
  size_t start = 0;
  for (int line = 0; line < 4 && start != std::string::npos; ++line)
    start = csv.find('\n', start) + 1;
  return csv.substr(start);
}

std::string backendRowsOf(const EventList& events) {
  std::ostringstream out;
  writeBackendCsvRows(out, events, 31000, "EXECUTE");
  return out.str();
}

// Rows that every log has.
constexpr const char* composeRow = "0,COMPOSE GRAPHS,0,US,NETRUN,ROOT,null\n";
constexpr const char* deinitRow = "0,DE-INIT,0,US,NETRUN,ROOT,null\n";

TEST(CsvLog, StartsWithVersionLinesAndColumnHeader) {
  LogHeaderDetails header;
  header.netRunVersion = "v1.0.0";
  header.backendVersion = "v2.1.0, beta";
  const std::string head =
      "kvt-profile-viewer version, v3.17.4.231102093015_41736\n"
      "kvt-net-run version, v1.0.0\n"
      "Backend version, v2.1.0, beta\n"
      "Msg Timestamp, Message, Time, Unit of Measurement, Timing Source, Event Level, "
      "Event Identifier\n";
  EXPECT_EQ(csvLogOf(EventModel{}, header).substr(0, head.size() + 1), head + "0");
}

TEST(CsvLog, EmptyModelHasEmptyVersionsAndThreeDataRows) {
  EXPECT_EQ(csvLogOf(EventModel{}),
            "kvt-profile-viewer version, v3.17.4.231102093015_41736\n"
            "kvt-net-run version, \n"
            "Backend version, \n"
            "Msg Timestamp, Message, Time, Unit of Measurement, Timing Source, Event Level, "
            "Event Identifier\n"
            "0,INIT,0,US,NETRUN,ROOT,null\n"
            "0,COMPOSE GRAPHS,0,US,NETRUN,ROOT,null\n"
            "0,DE-INIT,0,US,NETRUN,ROOT,null\n");
}

TEST(CsvLog, WritesTheRowsOfEachMethod) {
  struct Case {
    const char* what;
    void (*fill)(EventModel&);
    std::string rows;
  };
  const Case cases[] = {
      {"init timing without init events",
       [](EventModel& m) {
         m.initTiming = {1000, 5230};
         m.initEvents = {eventRecord("ignored", 1)};
       },
       std::string("1000,INIT,5230,US,NETRUN,ROOT,null\n") + composeRow + deinitRow},
      {"init events",
       [](EventModel& m) {
         m.initTiming = {1000, 5230};
         m.initEvents = {eventRecord("init backend", 4100)};
         m.hasInitEvents = true;
       },
       std::string("1000,INIT,5230,US,NETRUN,ROOT,null\n"
                   "1000,INIT,4100,US,BACKEND,ROOT,init backend\n") +
           composeRow + deinitRow},
      {"init slot present lists the init events, not its own",
       [](EventModel& m) {
         m.initTiming = {1000, 5230};
         m.initEvents = {eventRecord("from graph messages", 7)};
         m.initSlot = {5230, 1000, {eventRecord("from init slot", 8)}, true};
       },
       std::string("1000,INIT,5230,US,NETRUN,ROOT,null\n"
                   "1000,INIT,7,US,BACKEND,ROOT,from graph messages\n") +
           composeRow + deinitRow},
      {"compose graphs",
       [](EventModel& m) {
         m.composeGraphsTiming = {7000, 812};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n"
                   "7000,COMPOSE GRAPHS,812,US,NETRUN,ROOT,null\n") +
           deinitRow},
      {"finalize graphs in insertion order, back-end rows held back without the flag",
       [](EventModel& m) {
         m.finalizeByGraph.getOrCreate("zeta") = {20110, 9000, {eventRecord("finalize", 1)}};
         m.finalizeByGraph.getOrCreate("alpha") = {300, 9500, {}};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow +
           "9000,FINALIZE,20110,US,NETRUN,ROOT,Graph 0: zeta\n"
           "9500,FINALIZE,300,US,NETRUN,ROOT,Graph 1: alpha\n" +
           deinitRow},
      {"finalize back-end rows with the flag",
       [](EventModel& m) {
         m.finalizeByGraph.getOrCreate("g") = {20110, 9000, {eventRecord("compile", 17000)}};
         m.hasFinalizeEvents = true;
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow +
           "9000,FINALIZE,20110,US,NETRUN,ROOT,Graph 0: g\n"
           "9000,FINALIZE,17000,US,BACKEND,ROOT,compile\n" +
           deinitRow},
      {"de-init with back-end rows",
       [](EventModel& m) {
         m.deinitSlot = {903, 52000, {eventRecord("release", 2048, unitBytes)}};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow +
           "52000,DE-INIT,903,US,NETRUN,ROOT,null\n"
           "52000,DE-INIT,2048,BYTES,BACKEND,ROOT,release\n"},
      {"three graphs with two executions each",
       [](EventModel& m) {
         for (const char* graph : {"c", "a", "b"})
           m.executionsByGraph.getOrCreate(graph) = {{10, 1, {}}, {20, 2, {}}};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow + deinitRow +
           "1,EXECUTE,10,US,NETRUN,ROOT,Graph 0: c\n"
           "2,EXECUTE,20,US,NETRUN,ROOT,Graph 0: c\n"
           "1,EXECUTE,10,US,NETRUN,ROOT,Graph 1: a\n"
           "2,EXECUTE,20,US,NETRUN,ROOT,Graph 1: a\n"
           "1,EXECUTE,10,US,NETRUN,ROOT,Graph 2: b\n"
           "2,EXECUTE,20,US,NETRUN,ROOT,Graph 2: b\n"},
      {"graph numbers of execute independent of finalize",
       [](EventModel& m) {
         m.finalizeByGraph.getOrCreate("first") = {1, 1, {}};
         m.finalizeByGraph.getOrCreate("second") = {2, 2, {}};
         m.executionsByGraph.getOrCreate("second") = {{3, 3, {}}};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow +
           "1,FINALIZE,1,US,NETRUN,ROOT,Graph 0: first\n"
           "2,FINALIZE,2,US,NETRUN,ROOT,Graph 1: second\n" +
           deinitRow + "3,EXECUTE,3,US,NETRUN,ROOT,Graph 0: second\n"},
      {"each execution followed by its own back-end rows",
       [](EventModel& m) {
         m.executionsByGraph.getOrCreate("model_graph") = {
             {1450,
              31000,
              {eventRecord("accelerator execute", 1200, unitMicroseconds, 0,
                           {eventRecord("scratch memory", 2048, unitBytes)})}},
             {1422, 33000, {}}};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow + deinitRow +
           "31000,EXECUTE,1450,US,NETRUN,ROOT,Graph 0: model_graph\n"
           "31000,EXECUTE,1200,US,BACKEND,ROOT,accelerator execute\n"
           "31000,EXECUTE,2048,BYTES,BACKEND,SUB-EVENT,scratch memory\n"
           "33000,EXECUTE,1422,US,NETRUN,ROOT,Graph 0: model_graph\n"},
      {"inference rate with six decimals",
       [](EventModel& m) {
         m.executeOverallSlot = {
             0, 50000, {eventRecord("duration", 29000), eventRecord("count", 20)}, true};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow + deinitRow +
           "50000,EXECUTE IPS,689.655151,INF/SEC,NETRUN,ROOT,null\n"},
      {"inference rate: second event is the duration when neither is named so",
       [](EventModel& m) {
         m.executeOverallSlot = {
             0, 50000, {eventRecord("count", 3), eventRecord("time", 2000000)}, true};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow + deinitRow +
           "50000,EXECUTE IPS,1.500000,INF/SEC,NETRUN,ROOT,null\n"},
      {"inference rate: duration 0",
       [](EventModel& m) {
         m.executeOverallSlot = {
             0, 50000, {eventRecord("count", 20), eventRecord("duration", 0)}, true};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow + deinitRow +
           "50000,EXECUTE IPS,0.000000,INF/SEC,NETRUN,ROOT,null\n"},
      {"inference rate: one event only",
       [](EventModel& m) {
         m.executeOverallSlot = {0, 50000, {eventRecord("duration", 29000)}, true};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow + deinitRow},
      {"inference rate: record not seen",
       [](EventModel& m) {
         m.executeOverallSlot = {
             0, 50000, {eventRecord("duration", 1), eventRecord("count", 1)}, false};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow + deinitRow},
      {"library load latency after the rate's precision change",
       [](EventModel& m) {
         m.executeOverallSlot = {
             0, 50000, {eventRecord("duration", 1000000), eventRecord("count", 1)}, true};
         m.libLoadSlot = {0, 500, {eventRecord("latency", 3120), eventRecord("ignored", 9)}, true};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow + deinitRow +
           "50000,EXECUTE IPS,1.000000,INF/SEC,NETRUN,ROOT,null\n"
           "500,DLOPEN LATENCY,3120,US,NETRUN,ROOT,null\n"},
      {"library load without events",
       [](EventModel& m) {
         m.libLoadSlot = {0, 500, {}, true};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow + deinitRow},
      {"library load not seen",
       [](EventModel& m) {
         m.libLoadSlot = {0, 500, {eventRecord("latency", 3120)}, false};
       },
       std::string("0,INIT,0,US,NETRUN,ROOT,null\n") + composeRow + deinitRow},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EventModel model;
    c.fill(model);
    EXPECT_EQ(dataRowsOf(model), c.rows);
  }
}

TEST(CsvLog, WritesBackendRowsOfEventsAndTheirDirectSubEvents) {
  struct Case {
    const char* what;
    EventList events;
    const char* rows;
  };
  const Case cases[] = {
      {"no events", {}, ""},
      {"event with sub-events",
       {eventRecord(
           "execute", 1200, unitMicroseconds, 0,
           {eventRecord("scratch", 2048, unitBytes), eventRecord("cycles", 1450000, unitCycles)})},
       "31000,EXECUTE,1200,US,BACKEND,ROOT,execute\n"
       "31000,EXECUTE,2048,BYTES,BACKEND,SUB-EVENT,scratch\n"
       "31000,EXECUTE,1450000,CYCLES,BACKEND,SUB-EVENT,cycles\n"},
      {"object event with two sub-events keeps the sub-events",
       {eventRecord("blob", 0, unitObject, 0, {eventRecord("a", 1), eventRecord("b", 2)})},
       "31000,EXECUTE,1,US,BACKEND,SUB-EVENT,a\n"
       "31000,EXECUTE,2,US,BACKEND,SUB-EVENT,b\n"},
      {"object sub-event left out",
       {eventRecord("parent", 5, unitCount, 0,
                    {eventRecord("blob", 0, unitObject), eventRecord("kept", 6, 0)})},
       "31000,EXECUTE,5,COUNT,BACKEND,ROOT,parent\n"
       "31000,EXECUTE,6,US,BACKEND,SUB-EVENT,kept\n"},
      {"children of sub-events not visited",
       {eventRecord("top", 1, unitMicroseconds, 0,
                    {eventRecord("middle", 2, unitMicroseconds, 0, {eventRecord("bottom", 3)})})},
       "31000,EXECUTE,1,US,BACKEND,ROOT,top\n"
       "31000,EXECUTE,2,US,BACKEND,SUB-EVENT,middle\n"},
      {"unknown data type leaves the time empty",
       {valueEvent("bytes", dataTypeBytes, 0)},
       "31000,EXECUTE,,US,BACKEND,ROOT,bytes\n"},
      {"32-bit float",
       {valueEvent("ratio", dataTypeF32, std::bit_cast<uint32_t>(1.5f))},
       "31000,EXECUTE,1.500000,US,BACKEND,ROOT,ratio\n"},
      {"signed value",
       {valueEvent("delta", dataTypeI64, static_cast<uint64_t>(-42))},
       "31000,EXECUTE,-42,US,BACKEND,ROOT,delta\n"},
      {"missing identifier and comma in identifier written as they are",
       {eventRecord("null", 1), eventRecord("a,b", 2)},
       "31000,EXECUTE,1,US,BACKEND,ROOT,null\n"
       "31000,EXECUTE,2,US,BACKEND,ROOT,a,b\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(backendRowsOf(c.events), c.rows);
  }
}

// Stands in for the standard output and keeps the CSV file as it stood at the first print.
class CsvAtFirstPrint : public std::stringbuf {
public:
  explicit CsvAtFirstPrint(std::filesystem::path csvPath)
      : csvPath(std::move(csvPath)), previous(std::cout.rdbuf(this)) {}
  CsvAtFirstPrint(const CsvAtFirstPrint&) = delete;
  CsvAtFirstPrint& operator=(const CsvAtFirstPrint&) = delete;
  ~CsvAtFirstPrint() override { std::cout.rdbuf(previous); }

  std::string csv;

protected:
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    snapshot();
    return std::stringbuf::xsputn(text, count);
  }
  int_type overflow(int_type c) override {
    snapshot();
    return std::stringbuf::overflow(c);
  }

private:
  void snapshot() {
    if (!printed)
      csv = readFile(csvPath);
    printed = true;
  }

  std::filesystem::path csvPath;
  std::streambuf* previous;
  bool printed = false;
};

// A graph executed once, an overall rate and a library load: every summary section appears.
EventModel modelOfARun() {
  EventModel model;
  model.composeGraphsTiming = {7000, 812};
  model.executionsByGraph.getOrCreate("g") = {{1450, 31000, {eventRecord("execute", 1200)}}};
  model.averageExecutionByGraph.getOrCreate("g") = {1450, 31000, {eventRecord("execute", 1200)}};
  model.executeOverallSlot = {
      0, 50000, {eventRecord("duration", 29000), eventRecord("n", 20)}, true};
  model.libLoadSlot = {3120, 500, {eventRecord("dlopen", 3120)}, true};
  return model;
}

ReportContext contextWithHeaderText(const EventModel& model, const LogHeaderDetails& header) {
  ReportContext context = contextOf(model, header);
  context.headerDetails = "Time Scale: 1\n";
  return context;
}

TEST(CsvOutputs, PrintsTheWholeSummaryOnceTheCsvFileIsComplete) {
  const TempDir dir;
  const std::string csvPath = (dir.path() / "events.csv").string();
  const EventModel model = modelOfARun();
  const LogHeaderDetails header;
  CsvAtFirstPrint printed(csvPath);

  EXPECT_TRUE(writeCsvOutputs(csvPath, contextWithHeaderText(model, header)));

  const std::string expectedCsv = csvLogOf(model);
  EXPECT_EQ(readFile(csvPath), expectedCsv);
  EXPECT_EQ(printed.csv, expectedCsv);
  EXPECT_EQ(printed.str(),
            "Time Scale: 1\n"
            "\n"
            "Kvt Init/Prepare/Finalize/De-Init/Execute/Lib-Load Statistics:\n" +
                std::string(60, '-') +
                "\n"
                "Init Stats:\n-----------\n    NetRun: 0 us\n\n"
                "Compose Graphs Stats:\n--------------\n    NetRun: 812 us\n\n"
                "Finalize Stats:\n---------------\n\n"
                "De-Init Stats:\n--------------\n    NetRun: 0 us\n\n"
                "Execute Stats (Average):\n------------------------\n"
                "Total Inference Time: \n---------------------\n"
                "Graph 0 (g):\n    NetRun: 1450 us\n    Backend (execute): 1200 us\n\n"
                "\n"
                "Execute Stats (Overall):\n------------------------\n"
                "    NetRun IPS (includes IO and misc. time): 689.6552 inf/sec \n\n"
                "Dynamic Lib Load Stats:\n------------------------\n"
                "    Backend Latency: 3120 us\n\n");
}

TEST(CsvOutputs, RewritesTheFileAndPrintsTheSameSummaryOnEveryCall) {
  const TempDir dir;
  const std::string csvPath = (dir.path() / "events.csv").string();
  const EventModel model = modelOfARun();
  const LogHeaderDetails header;
  StdoutCapture printed;

  ASSERT_TRUE(writeCsvOutputs(csvPath, contextOf(model, header)));
  const std::string firstSummary = printed.text();
  ASSERT_TRUE(writeCsvOutputs(csvPath, contextOf(model, header)));

  EXPECT_EQ(readFile(csvPath), csvLogOf(model));
  EXPECT_EQ(printed.text(), firstSummary + firstSummary);
}

TEST(CsvOutputs, EmptyPathPrintsTheSummaryWithoutAFile) {
  const TempDir dir;
  const EventModel model = modelOfARun();
  const LogHeaderDetails header;
  std::string withFile;
  {
    StdoutCapture printed;
    ASSERT_TRUE(writeCsvOutputs((dir.path() / "events.csv").string(), contextOf(model, header)));
    withFile = printed.text();
  }
  std::filesystem::remove(dir.path() / "events.csv");
  StdoutCapture printed;

  EXPECT_TRUE(writeCsvOutputs("", contextOf(model, header)));

  EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
  EXPECT_EQ(printed.text(), withFile);
}

TEST(CsvOutputs, UnwritablePathReportsAndPrintsNothing) {
  const TempDir dir;
  const std::string csvPath = (dir.path() / "missing" / "events.csv").string();
  const EventModel model = modelOfARun();
  const LogHeaderDetails header;
  CapturingLogger logger(logError);
  StdoutCapture printed;

  EXPECT_FALSE(writeCsvOutputs(csvPath, contextOf(model, header)));

  EXPECT_EQ(printed.text(), "");
  EXPECT_EQ(logger.texts(logError),
            std::vector<std::string>{"Invalid output csvfile: [" + csvPath + "]"});
  EXPECT_FALSE(std::filesystem::exists(csvPath));
}

} // namespace
} // namespace kvt::profiling
