// Merging event trees of repeated executions and averaging them.
#include "model/EventMerge.h"

#include <gtest/gtest.h>

#include <bit>
#include <sstream>

namespace kvt::profiling {
namespace {

using namespace std::string_literals;

EventRecord record(std::string identifier, uint64_t payload, uint32_t dataType = dataTypeU64,
                   EventList children = {}) {
  EventRecord result;
  result.identifier = std::move(identifier);
  result.value = {dataType, payload};
  result.children = std::move(children);
  return result;
}

EventRecord floatRecord(std::string identifier, float value) {
  return record(std::move(identifier), std::bit_cast<uint32_t>(value), dataTypeF32);
}

// "a=3:164x2{b=1:164x1}": identifier=payload:data type in hex x count, children in braces.
std::string text(const EventList& events) {
  std::ostringstream out;
  for (const EventRecord& r : events) {
    if (&r != &events.front())
      out << ' ';
    out << r.identifier << '=' << r.value.payload << ':' << std::hex << r.value.dataType << std::dec
        << 'x' << r.count;
    if (!r.children.empty())
      out << '{' << text(r.children) << '}';
  }
  return out.str();
}

// "r7" from "r" and 7.
std::string numbered(std::string prefix, int number) {
  return prefix += std::to_string(number);
}

ExecutionEntry execution(uint64_t duration, uint64_t timestamp, EventList events) {
  return ExecutionEntry{duration, timestamp, std::move(events)};
}

// The executions folded in log order.
ExecutionEntry averageExecutions(const std::vector<ExecutionEntry>& executions) {
  ExecutionAverager averager;
  for (const ExecutionEntry& entry : executions)
    averager.add(entry);
  return std::move(averager).average();
}

TEST(EventMerge, MergesIncomingRecordsIntoTheAccumulatedList) {
  struct Case {
    const char* what;
    EventList accumulated;
    EventList incoming;
    std::string merged;
  };
  const Case cases[] = {
      {"into an empty list: a copy, data types and counts unchanged",
       {},
       {floatRecord("a", 1.5f), record("b", 2, dataTypeI64), record("b", 3, dataTypeI64)},
       "a=1069547520:232x1 b=2:64x1 b=3:64x1"},
      {"a match adds the payload, becomes unsigned and counts one more",
       {record("a", 1, dataTypeI64)},
       {record("a", 2, dataTypeI64)},
       "a=3:164x2"},
      {"only the first record of an identifier matches",
       {record("a", 1), record("a", 10)},
       {record("a", 5)},
       "a=6:164x2 a=10:164x1"},
      {"a later holder of the identifier at the incoming record's own place does not match",
       {record("a", 1), record("a", 10)},
       {record("b", 5), record("a", 5)},
       "a=6:164x2 a=10:164x1 b=5:164x1"},
      {"unmatched records are appended after all others, in incoming order",
       {record("a", 1)},
       {record("c", 3), record("a", 1), record("b", 2)},
       "a=2:164x2 c=3:164x1 b=2:164x1"},
      {"records appended by this merge are not matched by it",
       {record("a", 1)},
       {record("x", 1), record("x", 2)},
       "a=1:164x1 x=1:164x1 x=2:164x1"},
      {"identifiers are compared byte for byte",
       {record("a", 1)},
       {record("A", 1), record(std::string("a\0", 2), 1), record("a ", 1)},
       "a=1:164x1 A=1:164x1 a\0=1:164x1 a =1:164x1"s},
      {"children are merged at every level, three deep",
       {record("p", 1, dataTypeU64, {record("c", 1, dataTypeU64, {record("g", 1)})})},
       {record("p", 1, dataTypeU64,
               {record("c", 2, dataTypeU64, {record("g", 3), record("h", 4)}), record("d", 5)})},
       "p=2:164x2{c=3:164x2{g=4:164x2 h=4:164x1} d=5:164x1}"},
      {"an unmatched record keeps its subtree as it is",
       {record("a", 1)},
       {record("b", 1, dataTypeU64, {floatRecord("c", 1.5f)})},
       "a=1:164x1 b=1:164x1{c=1069547520:232x1}"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EventList accumulated = c.accumulated;
    mergeEventLists(accumulated, c.incoming);
    EXPECT_EQ(text(accumulated), c.merged);
  }
}

TEST(EventMerge, AWideListMatchesTheFirstHolderAcrossMerges) {
  EventList first;
  for (int i = 0; i < 40; ++i)
    first.push_back(record(numbered("r", i), 1));
  first.push_back(record("r7", 1));
  ExecutionAverager averager;
  averager.add(execution(0, 0, first));
  averager.add(execution(0, 0, {record("new", 1), record("r7", 1)}));
  averager.add(execution(0, 0, {record("new", 1), record("r7", 1), record("r40", 1)}));
  const EventList averaged = std::move(averager).average().events;
  ASSERT_EQ(averaged.size(), 43u);
  EXPECT_EQ(text({averaged[7], averaged[40], averaged[41], averaged[42]}),
            "r7=1:164x3 r7=1:164x1 new=1:164x2 r40=1:164x1");
}

TEST(EventMerge, AveragesExecutions) {
  struct Case {
    const char* what;
    std::vector<ExecutionEntry> executions;
    uint64_t duration;
    uint64_t timestamp;
    std::string events;
  };
  const Case cases[] = {
      {"a float of 1.5 in two executions averages to its bit pattern, unsigned",
       {execution(10, 1, {floatRecord("f", 1.5f)}), execution(20, 2, {floatRecord("f", 1.5f)})},
       15,
       2,
       "f=1069547520:164x2"},
      {"records in some executions only are divided by their own count",
       {execution(1, 1, {record("a", 10), record("b", 4)}), execution(1, 2, {record("a", 20)}),
        execution(1, 3, {record("a", 30), record("b", 8)})},
       1,
       3,
       "a=20:164x3 b=6:164x2"},
      {"an empty execution counts towards the duration only",
       {execution(10, 1, {record("a", 3)}), execution(20, 2, {record("a", 5)}),
        execution(30, 3, {})},
       20,
       3,
       "a=4:164x2"},
      {"divisions truncate",
       {execution(1, 1, {record("a", 3)}), execution(2, 2, {record("a", 4)})},
       1,
       2,
       "a=3:164x2"},
      {"the last execution's timestamp remains, not the largest",
       {execution(0, 5, {}), execution(0, 9, {}), execution(0, 3, {})},
       0,
       3,
       ""},
      {"every level of a deep tree is averaged",
       {execution(0, 0,
                  {record("p", 2, dataTypeU64, {record("c", 4, dataTypeU64, {record("g", 6)})})}),
        execution(0, 0,
                  {record("p", 4, dataTypeU64,
                          {record("c", 8, dataTypeU64, {record("g", 10), record("h", 9)})})})},
       0,
       0,
       "p=3:164x2{c=6:164x2{g=8:164x2 h=9:164x1}}"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ExecutionEntry average = averageExecutions(c.executions);
    EXPECT_EQ(average.duration, c.duration);
    EXPECT_EQ(average.timestamp, c.timestamp);
    EXPECT_EQ(text(average.events), c.events);
  }
}

} // namespace
} // namespace kvt::profiling
