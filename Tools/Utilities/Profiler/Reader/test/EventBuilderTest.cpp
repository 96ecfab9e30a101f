// Event records built from the events of a log: every value type, absent fields and nesting.
#include "support/ParsedLog.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

using testing::fixtureLog;
using testing::parseLogFile;

TEST(EventBuilder, BuildsRecordsFromEveryKindOfEvent) {
  const testing::ParsedLog log = parseLogFile(fixtureLog("event-values"));
  ASSERT_TRUE(log.parsed);
  const RunLevelSlot& slot = log.reader->eventModel().executeOverallSlot;
  EXPECT_EQ(slot.duration, 20u);
  EXPECT_EQ(slot.timestamp, 9000u);
  ASSERT_EQ(slot.events.size(), 12u);
  const EventRecord& parent = slot.events[11];
  ASSERT_EQ(parent.children.size(), 2u);
  ASSERT_EQ(parent.children[0].children.size(), 1u);

  struct Case {
    const char* what;
    const EventRecord& record;
    const char* identifier;
    uint32_t dataType;
    uint64_t payload;
    std::vector<uint8_t> bytes;
    uint32_t eventType;
    uint32_t unit;
    uint64_t timestamp;
    const char* message;
  };
  const std::vector<EventRecord>& e = slot.events;
  const Case cases[] = {
      {"signed, every field set", e[0], "i64", 0x0064, 0xFFFFFFFFFFFFFFFE, {}, 7, 3, 55, "signed"},
      {"unsigned", e[1], "u64", 0x0164, 0xFFFFFFFFFFFFFFFF, {}, 0, 0, 0, ""},
      {"32-bit float in the low bytes", e[2], "f32", 0x0232, 0x3FC00000, {}, 0, 0, 0, ""},
      {"32-bit float absent", e[3], "f32 absent", 0x0232, 0, {}, 0, 0, 0, ""},
      {"bytes", e[4], "bytes", 0x7FFFFFFF, 0, {1, 2, 255}, 0, 0, 0, ""},
      {"empty bytes", e[5], "empty bytes", 0x7FFFFFFF, 0, {}, 0, 0, 0, ""},
      {"bytes absent", e[6], "bytes absent", 0x7FFFFFFF, 0, {}, 0, 0, 0, ""},
      {"64-bit float", e[7], "f64", 0x0264, 0x4004000000000000, {}, 0, 0, 0, ""},
      {"unknown value type reads value_u64",
       e[8],
       "unknown value type",
       0x0164,
       42,
       {},
       0,
       0,
       0,
       ""},
      {"no identifier, no value type", e[9], "null", 0x0164, 7, {}, 0, 0, 0, ""},
      {"an empty identifier stays empty", e[10], "", 0x0164, 1, {}, 0, 0, 0, ""},
      {"parent", parent, "parent", 0x0164, 0, {}, 300, 0, 0, ""},
      {"child", parent.children[0], "child", 0x0164, 0, {}, 0, 0, 0, ""},
      {"grandchild", parent.children[0].children[0], "grandchild", 0x0064, 5, {}, 0, 2, 0, ""},
      {"sibling", parent.children[1], "sibling", 0x0164, 0, {}, 0, 0, 77, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(c.record.identifier, c.identifier);
    EXPECT_EQ(c.record.value.dataType, c.dataType);
    EXPECT_EQ(c.record.value.payload, c.payload);
    EXPECT_EQ(c.record.bytes, c.bytes);
    EXPECT_EQ(c.record.eventType, c.eventType);
    EXPECT_EQ(c.record.unit, c.unit);
    EXPECT_EQ(c.record.timestamp, c.timestamp);
    EXPECT_EQ(c.record.message, c.message);
    EXPECT_EQ(c.record.count, 1u);
  }
}

} // namespace
} // namespace kvt::profiling
