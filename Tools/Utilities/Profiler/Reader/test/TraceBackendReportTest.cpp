// The trace reader's back-end report and the resource names of a step.
#include "trace/ResourceReport.h"

#include "support/EventRecords.h"
#include "text/Units.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kvt::profiling {
namespace {

using testing::eventRecord;

TEST(ResourceText, Masks) {
  struct Case {
    const char* what;
    uint8_t mask;
    const char* text;
  };
  const Case cases[] = {
      {"PXA and DMA", 5, "PXA, DMA"},
      {"all three", 7, "PXA, PXB, DMA"},
      {"higher bits ignored", 0xF9, "PXA"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(resourceText(c.mask), c.text);
  }
}

std::string reportOf(const EventList& events) {
  std::ostringstream out;
  writeTraceBackendReport(out, events, 0);
  return out.str();
}

TEST(TraceBackendReport, Lines) {
  struct Case {
    const char* what;
    EventList events;
    std::string text;
  };
  const Case cases[] = {
      {"top-level background items print their name only",
       {eventRecord("Load", 3, 1, 5005), eventRecord("Store", 4, 1, 5006)},
       "    Backend (Load)\n    Backend (Store)\n"},
      {"mask 0 prints nothing after the colon",
       {eventRecord("Resources", 0, 1, 5004)},
       "    Backend (Resources): \n"},
      {"mask above 8 bits keeps the low bits",
       {eventRecord("Resources", 0x102, 1, 5004)},
       "    Backend (Resources): PXB\n"},
      {"hidden records take their subtree along",
       {eventRecord("internal", 1, 1, 9004, {eventRecord("ordinary", 2)}),
        eventRecord("first hidden", 1, 1, 9000), eventRecord("last hidden", 1, 1, 9009),
        eventRecord("just below", 8, unitCycles, 8999),
        eventRecord("just above", 9, unitBytes, 9010)},
       "    Backend (just below): 8  cycles\n    Backend (just above): 9  bytes\n"},
      {"nesting indents by 4, 8 and 12",
       {eventRecord("one", 1, unitCount, 0,
                    {eventRecord("two", 2, unitObject, 0, {eventRecord("three", 3)})})},
       "    Backend (one): 1  count\n        two: 2  object\n            three: 3  us\n"},
      {"a hidden child leaves its siblings",
       {eventRecord("parent", 1, 1, 0,
                    {eventRecord("secret", 1, 1, 9005), eventRecord("shown", 2)})},
       "    Backend (parent): 1  us\n        shown: 2  us\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(reportOf(c.events), c.text);
  }
}

TEST(TraceBackendReport, ValuesPrintAsUnsignedWhateverTheirType) {
  EventRecord negative = eventRecord("delta", 0);
  negative.value.dataType = dataTypeI64;
  negative.value.payload = ~uint64_t(0);
  EXPECT_EQ(reportOf({negative}), "    Backend (delta): 18446744073709551615  us\n");
}

TEST(TraceBackendReport, LeavesFixedPrecisionTwo) {
  std::ostringstream out;
  writeTraceBackendReport(out, {eventRecord("step", 1)}, 0);
  out << 2.5;
  EXPECT_EQ(out.str(), "    Backend (step): 1  us\n2.50");
}

TEST(TraceBackendReport, StartsAtTheGivenLevel) {
  std::ostringstream out;
  writeTraceBackendReport(out, {eventRecord("step", 1)}, 2);
  EXPECT_EQ(out.str(), "            step: 1  us\n");
}

} // namespace
} // namespace kvt::profiling
