// Routing, level filtering and filing of each message type into the event model.
#include "model/MethodDispatch.h"
#include "log/FlatBufferReaderUtil.h"
#include "log/LogWriter.h"
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/ModelText.h"

#include <gtest/gtest.h>

#include <limits>

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;
using testing::modelText;

struct Dispatched {
  std::vector<bool> results; // dispatchMessage's result per message
  EventModel model;
  testing::CollectedExecutions executions;
  std::string text() const { return modelText(model, executions.byGraph); }
};

// Dispatches the messages, written as one chunk, into a fresh model.
Dispatched dispatchAll(std::vector<MessageSpec> messages,
                       VisibilityLevel visibilityLevel = VisibilityLevel{1}) {
  ChunkSpec chunk;
  chunk.messages = std::move(messages);
  std::vector<uint8_t> buffer = buildChunk(chunk);
  buffer.erase(buffer.begin(), buffer.begin() + 4); // the size prefix
  FlatBufferReaderUtil stream;
  EXPECT_TRUE(stream.loadBuffer(buffer));
  Dispatched dispatched;
  const ExecutionConsumers consumers{dispatched.executions.consumer()};
  while (const schema::Message* message = stream.nextMessage())
    dispatched.results.push_back(
        dispatchMessage(dispatched.model, consumers, visibilityLevel, *message));
  return dispatched;
}

EventSpec event(const char* identifier, uint32_t eventType = 1) {
  EventSpec described;
  described.identifier = identifier;
  described.eventType = eventType;
  return described;
}

// A message of graph "g" at 7000 lasting 10, with the given events.
MessageSpec message(int8_t methodType, std::vector<EventSpec> events = {}) {
  MessageSpec described;
  described.stampTimestamp = 7000;
  described.methodType = methodType;
  described.timing = TimingSpec{100, 110};
  described.events = std::move(events);
  described.graphName = "g";
  return described;
}

EventSpec withChildren(EventSpec described, std::vector<EventSpec> children) {
  described.children = std::move(children);
  return described;
}

MessageSpec withVisibility(MessageSpec described, int8_t visibility) {
  described.visibility = visibility;
  return described;
}

MessageSpec withGraph(MessageSpec described, std::optional<std::string> graph) {
  described.graphName = std::move(graph);
  return described;
}

MessageSpec withTiming(MessageSpec described, uint64_t timestamp,
                       std::optional<TimingSpec> timing) {
  described.stampTimestamp = timestamp;
  described.timing = timing;
  return described;
}

TEST(MethodDispatch, RoutesEachMethodTypeAndFiltersByLevel) {
  struct Case {
    const char* what;
    int8_t methodType;
    int8_t visibility;
    bool taken;
    const char* model;
  };
  const Case cases[] = {
      {"execute", 1, 0, true, "initEvents [i]; hasInitEvents; execution g 7000/10 [f e]"},
      {"finalize", 2, 0, true,
       "initEvents [i]; hasInitEvents; finalize g 7000/10 [f e]; hasFinalize; hasFinalizeEvents"},
      {"execute with queue wait", 3, 0, true,
       "initEvents [i]; hasInitEvents; execution g 7000/10 [f e]; queueWaitMode"},
      {"execute with queue wait, dropped, still sets the mode", 3, 1, false, "queueWaitMode"},
      {"init", 4, 0, true, "initSlot 7000/10 [i f e] present"},
      {"de-init sets no presence", 5, 0, true, "deinitSlot 7000/10 [i f e]"},
      {"unnamed timing", 6, 0, true, "unnamedTiming 7000/10"},
      {"unnamed timing, dropped, keeps its timestamp", 6, 1, false, "unnamedTiming 7000/0"},
      {"compose graphs", 7, 0, true, "composeGraphsTiming 7000/10"},
      {"compose graphs, dropped, keeps its timestamp", 7, 1, false, "composeGraphsTiming 7000/0"},
      {"execute overall", 8, 0, true, "executeOverallSlot 7000/10 [i f e] present"},
      {"execute combined", 9, 0, true,
       "initEvents [i]; hasInitEvents; finalize g 7000/10 [f]; hasFinalizeEvents; "
       "execution g 7000/10 [e]; hasCombinedExecute"},
      {"library load", 10, 0, true, "libLoadSlot 7000/10 [i f e] present"},
      {"unknown type 0", 0, 0, false, ""},
      {"unknown type 11", 11, 0, false, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const MessageSpec described = withVisibility(
        message(c.methodType, {event("i", 100), event("f", 300), event("e", 1)}), c.visibility);
    const Dispatched dispatched = dispatchAll({described});
    EXPECT_EQ(dispatched.results, std::vector<bool>{c.taken});
    EXPECT_EQ(dispatched.text(), c.model);
  }
}

TEST(MethodDispatch, KeepsOnlyLevelsStrictlyBelowTheReaders) {
  struct Case {
    const char* what;
    int8_t readerLevel;
    std::optional<int8_t> visibility;
    bool taken;
  };
  const Case cases[] = {
      {"absent level against 0", 0, std::nullopt, false},
      {"absent level against 1", 1, std::nullopt, true},
      {"-1 against 0", 0, -1, true},
      {"equal levels", 3, 3, false},
      {"127 against 127", 127, 127, false},
      {"compared signed: 100 against -1", -1, 100, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    MessageSpec described = message(4);
    described.visibility = c.visibility;
    const Dispatched dispatched = dispatchAll({described}, VisibilityLevel{c.readerLevel});
    EXPECT_EQ(dispatched.results, std::vector<bool>{c.taken});
    EXPECT_EQ(dispatched.model.initSlot.present, c.taken);
  }
}

TEST(MethodDispatch, DurationIsEndMinusStartWhenBothArePresent) {
  constexpr uint64_t maxTime = std::numeric_limits<uint64_t>::max();
  struct Case {
    const char* what;
    TimingSpec timing;
    uint64_t duration;
  };
  const Case cases[] = {
      {"end after start", {100, 110}, 10},
      {"end before start gives 0, never a wrapped value", {110, 100}, 0},
      {"a stored 0 start is a value", {0, 10}, 10},
      {"the widest span", {0, maxTime}, maxTime},
      {"start absent", {std::nullopt, 10}, 0},
      {"end absent", {5, std::nullopt}, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    for (int8_t methodType : {6, 4, 1}) {
      SCOPED_TRACE(int(methodType));
      const Dispatched dispatched = dispatchAll({withTiming(message(methodType), 1, c.timing)});
      const EventModel& model = dispatched.model;
      const uint64_t duration = methodType == 6 ? model.unnamedTiming.duration
                                : methodType == 4
                                    ? model.initSlot.duration
                                    : dispatched.executions.byGraph.find("g")->at(0).duration;
      EXPECT_EQ(duration, c.duration);
    }
  }
}

TEST(MethodDispatch, FilesMessageSequences) {
  struct Case {
    const char* what;
    std::vector<MessageSpec> messages;
    std::vector<bool> taken;
    const char* model;
  };
  const Case cases[] = {
      {"graph messages without a graph name are dropped, finalize sets no flag",
       {withGraph(message(1, {event("i", 100)}), std::nullopt),
        withGraph(message(2, {event("f")}), std::nullopt), withGraph(message(3), std::nullopt),
        withGraph(message(9, {event("e")}), std::nullopt)},
       {false, false, false, false},
       "queueWaitMode"},
      {"the last graph message decides the init events, even with none",
       {message(1, {event("e1")}), message(1, {event("i1", 100)}),
        message(2, {event("i2", 100), event("i3", 100), event("f")}), message(1, {event("e2")})},
       {true, true, true, true},
       "initEvents []; hasInitEvents; finalize g 7000/10 [f]; hasFinalize; hasFinalizeEvents; "
       "execution g 7000/10 [e1]; execution g 7000/10 []; execution g 7000/10 [e2]"},
      {"init events of a dropped message are not taken",
       {message(1, {event("i1", 100)}), withVisibility(message(1, {event("i2", 100)}), 5)},
       {true, false},
       "initEvents [i1]; hasInitEvents; execution g 7000/10 []"},
      {"a finalize of init events only files no entry before finalize events were seen",
       {message(2, {event("i", 100)})},
       {true},
       "initEvents [i]; hasInitEvents; hasFinalize"},
      {"once finalize events were seen, a finalize without them files an empty entry",
       {message(9, {event("f", 300)}), withGraph(message(2, {event("i", 100)}), "h")},
       {true, true},
       "initEvents [i]; hasInitEvents; finalize g 7000/10 [f]; finalize h 7000/10 []; "
       "hasFinalize; hasFinalizeEvents; execution g 7000/10 []; hasCombinedExecute"},
      {"a combined message without finalize events files no finalize entry",
       {message(9, {event("e")})},
       {true},
       "execution g 7000/10 [e]; hasCombinedExecute"},
      {"the last finalize of a graph wins",
       {withTiming(message(2, {event("a")}), 1, TimingSpec{0, 5}),
        withTiming(message(2, {event("b")}), 2, TimingSpec{0, 6})},
       {true, true},
       "finalize g 2/6 [b]; hasFinalize; hasFinalizeEvents"},
      {"executions append per graph in log order, graphs in order of appearance",
       {withGraph(message(1, {event("a")}), "h"), message(3, {event("b")}),
        withGraph(message(1, {event("c")}), "h")},
       {true, true, true},
       "execution h 7000/10 [a]; execution h 7000/10 [c]; execution g 7000/10 [b]; "
       "queueWaitMode"},
      {"a run-level message replaces the slot's events and duration",
       {message(8, {event("a"), event("b")}),
        withTiming(message(8, {event("c")}), 9, TimingSpec{})},
       {true, true},
       "executeOverallSlot 9/0 [c] present"},
      {"a dropped compose message dates the row but keeps the earlier duration",
       {withTiming(message(7), 1, TimingSpec{0, 10}),
        withVisibility(withTiming(message(7), 9, TimingSpec{0, 99}), 1)},
       {true, false},
       "composeGraphsTiming 9/10"},
      {"events keep their order and nesting, duplicates included",
       {message(
           10, {withChildren(event("a"), {event("b"), event("b", 300)}), event("a"), EventSpec{}})},
       {true},
       "libLoadSlot 7000/10 [a{b b} a null] present"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const Dispatched dispatched = dispatchAll(c.messages);
    EXPECT_EQ(dispatched.results, c.taken);
    EXPECT_EQ(dispatched.text(), c.model);
  }
}

TEST(MethodDispatch, ReportsUnknownMethodTypesOnceEach) {
  CapturingLogger logger;
  MessageSpec withoutType = message(1);
  withoutType.methodType.reset();
  const Dispatched dispatched = dispatchAll({message(0), withoutType, message(11), message(7)});
  EXPECT_EQ(dispatched.results, (std::vector<bool>{false, false, false, true}));
  EXPECT_EQ(logger.texts(logError), std::vector<std::string>(3, "Unknown method type."));
}

} // namespace
} // namespace kvt::profiling
