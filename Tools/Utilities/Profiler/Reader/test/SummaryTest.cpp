// The average execute section's queue-wait arithmetic; the golden cases pin the other sections.
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

TEST(Summary, ExecuteAverageSubtractsTheTruncatedMeanQueueWait) {
  struct Case {
    const char* what;
    EventModel model;
    std::string graphs; // the text between the section's head and its closing empty line
  };
  EventModel combined = queueWaitModel({3, 4, 4});
  combined.hasCombinedExecute = true;

  EventModel graphWithoutWaits = queueWaitModel({});
  graphWithoutWaits.queueWaitByGraph.clear();

  // The graph's block with the given excluding line, or none.
  auto withExcluding = [](std::string excluding) {
    return "Graph 0 (g):\n    NetRun (Host Round-Trip): 100 us\n" +
           (excluding.empty()
                ? ""
                : "    NetRun (Host Round-Trip excluding queue wait): " + excluding + "\n") +
           "    Backend (exec): 90 us\n\n";
  };
  const Case cases[] = {
      {"queue-wait mean 3.67 truncates to 3", queueWaitModel({3, 4, 4}), withExcluding("97")},
      {"a mean above the round trip wraps around", queueWaitModel({105}),
       withExcluding("18446744073709551611")},
      {"no waits subtract nothing", queueWaitModel({}), withExcluding("100")},
      {"a mean rounded up to 2^64 saturates", queueWaitModel({~uint64_t(0), ~uint64_t(0)}),
       withExcluding("101")},
      {"graph without queue waits", graphWithoutWaits, withExcluding("")},
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

} // namespace
} // namespace kvt::profiling
