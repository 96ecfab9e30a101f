// The statistics sections on hand-built models, with the base back-end report beneath them.
#include "text/Summary.h"

#include "support/EventRecords.h"
#include "text/BackendReport.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

namespace kvt::profiling {
namespace {

using testing::eventRecord;
using SectionWriter = void (*)(std::ostream&, const ReportContext&);

std::string sectionsOf(const EventModel& model, std::initializer_list<SectionWriter> writers,
                       std::string headerDetails = "") {
  const LogHeaderDetails header;
  const ReportContext context{model,
                              header,
                              std::move(headerDetails),
                              [](std::ostream& out, const EventList& events) {
                                writeBackendReportLines(out, events, false);
                              },
                              {}};
  std::ostringstream out;
  out << std::fixed << std::setprecision(0);
  for (SectionWriter writer : writers)
    writer(out, context);
  return out.str();
}

ExecutionEntry entry(uint64_t duration, EventList events = {}) {
  return ExecutionEntry{duration, 0, std::move(events)};
}

// One averaged graph "g" of 100 us with a back-end record, run with queue waits.
EventModel queueWaitModel(std::vector<uint64_t> waitsUs) {
  EventModel model;
  model.queueWaitMode = true;
  model.averageExecutionByGraph.getOrCreate("g") = entry(100, {eventRecord("exec", 90)});
  model.queueWaitByGraph.getOrCreate("g") = std::move(waitsUs);
  return model;
}

RunLevelSlot slotOf(EventList events, bool present = true) {
  RunLevelSlot slot;
  slot.events = std::move(events);
  slot.present = present;
  return slot;
}

TEST(Summary, EmptyModel) {
  EXPECT_EQ(sectionsOf(EventModel{},
                       {writeHeaderDetailsLine, writeRunStatistics, writeExecuteAverageStats,
                        writeExecuteOverallStats, writeLibLoadStats}),
            "\n"
            "Kvt Init/Prepare/Finalize/De-Init/Execute/Lib-Load Statistics:\n"
            "------------------------------------------------------------\n"
            "Init Stats:\n"
            "-----------\n"
            "    NetRun: 0 us\n"
            "\n"
            "Compose Graphs Stats:\n"
            "--------------\n"
            "    NetRun: 0 us\n"
            "\n"
            "Finalize Stats:\n"
            "---------------\n"
            "\n"
            "De-Init Stats:\n"
            "--------------\n"
            "    NetRun: 0 us\n"
            "\n"
            "Execute Stats (Average):\n"
            "------------------------\n"
            "Total Inference Time: \n"
            "---------------------\n"
            "\n");
}

TEST(Summary, HeaderDetailsLineAddsAnEmptyLine) {
  EXPECT_EQ(sectionsOf(EventModel{}, {writeHeaderDetailsLine}, "Time Scale: 1\n"),
            "Time Scale: 1\n\n");
}

TEST(Summary, RunSections) {
  struct Case {
    const char* what;
    EventModel model;
    SectionWriter writer;
    std::string text;
  };
  EventModel initFromGraphs;
  initFromGraphs.initTiming = {7, 5230};
  initFromGraphs.hasInitEvents = true;
  initFromGraphs.initEvents = {eventRecord("init backend", 4100)};
  initFromGraphs.initSlot = slotOf({eventRecord("not shown", 1)});

  EventModel initFromSlot;
  initFromSlot.initSlot = slotOf({eventRecord("slot init", 3)});
  initFromSlot.initEvents = {eventRecord("not shown", 1)};

  EventModel initSlotAbsent;
  initSlotAbsent.initSlot = slotOf({eventRecord("not shown", 1)}, false);

  EventModel compose;
  compose.composeGraphsTiming = {7000, 812};

  EventModel finalize;
  finalize.hasFinalizeEvents = true;
  finalize.finalizeByGraph.getOrCreate("model_graph") = entry(20110, {eventRecord("load", 11)});
  finalize.finalizeByGraph.getOrCreate("second") = entry(5, {eventRecord("load", 12)});

  EventModel finalizeWithoutEvents = finalize;
  finalizeWithoutEvents.hasFinalizeEvents = false;

  EventModel deinit;
  deinit.deinitSlot.duration = 903;
  deinit.deinitSlot.events = {eventRecord("release", 2, 1, 0, {eventRecord("freed", 64, 2)})};

  const Case cases[] = {
      {"init with graph init events", initFromGraphs, writeInitStats,
       "Init Stats:\n-----------\n    NetRun: 5230 us\n    Backend (init backend): 4100 us\n\n"},
      {"init falls back to the init message", initFromSlot, writeInitStats,
       "Init Stats:\n-----------\n    NetRun: 0 us\n    Backend (slot init): 3 us\n\n"},
      {"init message absent", initSlotAbsent, writeInitStats,
       "Init Stats:\n-----------\n    NetRun: 0 us\n\n"},
      {"compose graphs rule is shorter than its title", compose, writeComposeGraphsStats,
       "Compose Graphs Stats:\n--------------\n    NetRun: 812 us\n\n"},
      {"finalize graphs in first-insertion order", finalize, writeFinalizeStats,
       "Finalize Stats:\n---------------\n"
       "Graph 0 (model_graph):\n    NetRun: 20110 us\n    Backend (load): 11 us\n\n"
       "Graph 1 (second):\n    NetRun: 5 us\n    Backend (load): 12 us\n\n"
       "\n"},
      {"finalize without back-end events", finalizeWithoutEvents, writeFinalizeStats,
       "Finalize Stats:\n---------------\n"
       "Graph 0 (model_graph):\n    NetRun: 20110 us\n\n"
       "Graph 1 (second):\n    NetRun: 5 us\n\n"
       "\n"},
      {"de-init", deinit, writeDeInitStats,
       "De-Init Stats:\n--------------\n    NetRun: 903 us\n"
       "    Backend (release): 2 us\n        freed: 64 bytes\n\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(sectionsOf(c.model, {c.writer}), c.text);
  }
}

TEST(Summary, ExecuteAverage) {
  struct Case {
    const char* what;
    EventModel model;
    std::string graphs; // the text between the section's head and its closing empty line
  };
  EventModel plain;
  plain.averageExecutionByGraph.getOrCreate("model_graph") = entry(1436, {eventRecord("run", 9)});
  plain.averageExecutionByGraph.getOrCreate("other") = entry(2);

  EventModel combined = queueWaitModel({3, 4, 4});
  combined.hasCombinedExecute = true;

  EventModel graphWithoutWaits = queueWaitModel({});
  graphWithoutWaits.queueWaitByGraph.clear();

  const Case cases[] = {
      {"graphs in first-insertion order", plain,
       "Graph 0 (model_graph):\n    NetRun: 1436 us\n    Backend (run): 9 us\n\n"
       "Graph 1 (other):\n    NetRun: 2 us\n\n"},
      {"queue-wait mean 3.67 truncates to 3", queueWaitModel({3, 4, 4}),
       "Graph 0 (g):\n    NetRun (Host Round-Trip): 100 us\n"
       "    NetRun (Host Round-Trip excluding queue wait): 97\n"
       "    Backend (exec): 90 us\n\n"},
      {"a mean above the round trip wraps around", queueWaitModel({105}),
       "Graph 0 (g):\n    NetRun (Host Round-Trip): 100 us\n"
       "    NetRun (Host Round-Trip excluding queue wait): 18446744073709551611\n"
       "    Backend (exec): 90 us\n\n"},
      {"no waits subtract nothing", queueWaitModel({}),
       "Graph 0 (g):\n    NetRun (Host Round-Trip): 100 us\n"
       "    NetRun (Host Round-Trip excluding queue wait): 100\n"
       "    Backend (exec): 90 us\n\n"},
      {"a mean rounded up to 2^64 saturates", queueWaitModel({~uint64_t(0), ~uint64_t(0)}),
       "Graph 0 (g):\n    NetRun (Host Round-Trip): 100 us\n"
       "    NetRun (Host Round-Trip excluding queue wait): 101\n"
       "    Backend (exec): 90 us\n\n"},
      {"graph without queue waits", graphWithoutWaits,
       "Graph 0 (g):\n    NetRun (Host Round-Trip): 100 us\n    Backend (exec): 90 us\n\n"},
      {"combined execute prints the round trip only", combined,
       "Graph 0 (g):\n    NetRun (Host Round-Trip): 100 us\n\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(sectionsOf(c.model, {writeExecuteAverageStats}),
              "Execute Stats (Average):\n------------------------\n"
              "Total Inference Time: \n---------------------\n" +
                  c.graphs + "\n");
  }
}

TEST(Summary, OverallAndLibraryLoad) {
  struct Case {
    const char* what;
    RunLevelSlot overall;
    RunLevelSlot libLoad;
    std::string text;
  };
  const std::string libLoadText =
      "Dynamic Lib Load Stats:\n------------------------\n    Backend Latency: 3120 us\n\n";
  const Case cases[] = {
      {"rate from duration and count",
       slotOf({eventRecord("duration", 1450), eventRecord("count", 1)}),
       slotOf({eventRecord("dlopen", 3120), eventRecord("ignored", 1)}),
       "Execute Stats (Overall):\n------------------------\n"
       "    NetRun IPS (includes IO and misc. time): 689.6552 inf/sec \n\n" +
           libLoadText},
      {"without a duration name the second event is the duration",
       slotOf({eventRecord("count", 1450), eventRecord("time", 1)}),
       {},
       "Execute Stats (Overall):\n------------------------\n"
       "    NetRun IPS (includes IO and misc. time): 1450000000.0000 inf/sec \n\n"},
      {"zero duration gives a zero rate",
       slotOf({eventRecord("count", 5), eventRecord("duration", 0)}),
       {},
       "Execute Stats (Overall):\n------------------------\n"
       "    NetRun IPS (includes IO and misc. time): 0.0000 inf/sec \n\n"},
      {"one event is no rate", slotOf({eventRecord("duration", 10)}), {}, ""},
      {"absent records", slotOf({eventRecord("duration", 10), eventRecord("count", 1)}, false),
       slotOf({eventRecord("dlopen", 3120)}, false), ""},
      {"library load without events", {}, slotOf({}), ""},
      {"library load alone", {}, slotOf({eventRecord("dlopen", 3120)}), libLoadText},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EventModel model;
    model.executeOverallSlot = c.overall;
    model.libLoadSlot = c.libLoad;
    EXPECT_EQ(sectionsOf(model, {writeExecuteOverallStats, writeLibLoadStats}), c.text);
  }
}

} // namespace
} // namespace kvt::profiling
