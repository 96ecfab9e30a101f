// The values a parse derives after the last message: queue waits and init timing.
#include "support/LogSpecs.h"
#include "support/ParsedLog.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kvt::profiling {
namespace {

using testing::parseMessages;

constexpr const char* queueWaitWarning = "Multiple queue-wait time events found per execution. "
                                         "Cannot calculate Host Round-Trip excluding queue wait\n";

using testing::eventSpec;

EventSpec queueWait(uint64_t value) {
  return eventSpec("queue wait", 405, value);
}

EventSpec holding(std::vector<EventSpec> children) {
  return eventSpec("holder", 0, 0, std::move(children));
}

MessageSpec timed(int8_t methodType, uint64_t timestamp, TimingSpec timing,
                  std::vector<EventSpec> events = {}) {
  return testing::messageSpec(methodType, std::move(events), timestamp, timing);
}

MessageSpec execution(int8_t methodType, std::string graph, std::vector<EventSpec> events,
                      int8_t visibility = 0) {
  MessageSpec described = timed(methodType, 0, {}, std::move(events));
  described.graphName = std::move(graph);
  described.visibility = visibility;
  return described;
}

// "g: 5 6; h: 7"
std::string queueWaitText(const EventModel& model) {
  std::ostringstream out;
  for (const auto& [graph, queueWaits] : model.queueWaitByGraph) {
    out << (out.tellp() > 0 ? "; " : "") << graph << ':';
    for (uint64_t queueWait : queueWaits)
      out << ' ' << queueWait;
  }
  return out.str();
}

TEST(DerivedValues, ExtractsOneQueueWaitPerExecution) {
  struct Case {
    const char* what;
    std::vector<MessageSpec> messages;
    const char* queueWaits;
    bool warned;
  };
  const Case cases[] = {
      {"a wait among the children of a top-level event counts",
       {execution(3, "g", {holding({queueWait(8)})})},
       "g: 8",
       false},
      {"a wait further down does not",
       {execution(3, "g", {holding({holding({queueWait(8)})})})},
       "",
       true},
      {"two waits in one execution",
       {execution(3, "g", {queueWait(1), holding({queueWait(2)})})},
       "",
       true},
      {"an execution without a wait empties every graph",
       {execution(3, "g", {queueWait(1)}), execution(3, "h", {}), execution(3, "g", {})},
       "",
       true},
      {"plain and combined executions count once the mode is set",
       {execution(3, "g", {queueWait(1)}), execution(1, "g", {queueWait(2)}),
        execution(9, "g", {queueWait(3)})},
       "g: 1 2 3",
       false},
      {"a dropped queue-wait message still sets the mode",
       {execution(3, "g", {}, 5), execution(1, "g", {queueWait(4)})},
       "g: 4",
       false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const testing::ParsedLog log = parseMessages(c.messages);
    ASSERT_TRUE(log.parsed);
    EXPECT_EQ(queueWaitText(log.reader->eventModel()), c.queueWaits);
    EXPECT_EQ(log.printed, c.warned ? queueWaitWarning : "");
  }
}

TEST(DerivedValues, DerivesTheInitTiming) {
  auto finalizeOf = [](std::string graph, uint64_t duration) {
    MessageSpec described = timed(2, 0, {0, duration}, {eventSpec("f")});
    described.graphName = std::move(graph);
    return described;
  };
  struct Case {
    const char* what;
    std::vector<MessageSpec> messages;
    uint64_t timestamp;
    uint64_t duration;
  };
  const Case cases[] = {
      {"finalize: unnamed, compose and every finalize summed, at the unnamed timestamp",
       {timed(6, 50, {0, 1}), timed(7, 60, {0, 2}), finalizeOf("g", 10), finalizeOf("h", 20),
        timed(4, 70, {0, 9})},
       50,
       33},
      {"finalize messages without finalize events still switch to the sum",
       {timed(6, 50, {0, 1}), timed(2, 0, {0, 40})},
       50,
       1},
      {"a zero sum falls back to the init message",
       {timed(6, 50, {0, 0}), finalizeOf("g", 0), timed(4, 70, {0, 9})},
       70,
       9},
      {"a zero sum without init message keeps the unnamed timestamp",
       {timed(6, 50, {0, 0}), finalizeOf("g", 0)},
       50,
       0},
      {"without finalize the init message decides",
       {timed(6, 50, {0, 1}), timed(4, 70, {0, 9})},
       70,
       9},
      {"without finalize or init nothing is derived", {timed(6, 50, {0, 1})}, 0, 0},
      {"an init message lasting 0 leaves the timing at 0", {timed(4, 70, {5, 5})}, 70, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const testing::ParsedLog log = parseMessages(c.messages);
    ASSERT_TRUE(log.parsed);
    const TimingPair& initTiming = log.reader->eventModel().initTiming;
    EXPECT_EQ(initTiming.timestamp, c.timestamp);
    EXPECT_EQ(initTiming.duration, c.duration);
  }
}

} // namespace
} // namespace kvt::profiling
