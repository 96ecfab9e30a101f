// The base reader's back-end lines and the object dump files of OBJECT events.
#include "text/BackendReport.h"

#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/EventRecords.h"
#include "support/TestFiles.h"
#include "text/Units.h"

#include <gtest/gtest.h>

#include <bit>
#include <sstream>

namespace kvt::profiling {
namespace {

using testing::eventRecord;
using testing::readFile;
using testing::TempDir;

EventRecord objectRecord(const std::string& fileName, EventList children = {}) {
  EventRecord record = eventRecord("blob", 0, unitObject, 0, std::move(children));
  record.value.dataType = dataTypeBytes;
  record.message = fileName;
  record.bytes = {'a', 0, '\n', 0xFF}; // a line feed that Windows' text mode would widen
  return record;
}

const std::string objectBytes("a\0\n\xFF", 4);

std::string reportOf(const EventList& events, bool dumpObjects) {
  std::ostringstream out;
  writeBackendReportLines(out, events, dumpObjects);
  return out.str();
}

TEST(BackendReport, Lines) {
  EventRecord floatRecord = eventRecord("ratio", 0, 0);
  floatRecord.value = {dataTypeF32, std::bit_cast<uint32_t>(1.5f)};
  EventRecord unknownRecord = eventRecord("opaque", 5, unitCycles);
  unknownRecord.value.dataType = 0x0999;

  struct Case {
    const char* what;
    EventList events;
    std::string text;
  };
  const Case cases[] = {
      {"grandchildren are not listed",
       {eventRecord("outer", 1, 1, 0, {eventRecord("inner", 2, 1, 0, {eventRecord("deep", 3)})})},
       "    Backend (outer): 1 us\n"
       "        inner: 2 us\n"},
      {"float and unknown value types",
       {floatRecord, unknownRecord},
       "    Backend (ratio): 1.500000 us\n"
       "    Backend (opaque):  cycles\n"},
      {"an object prints no line, nor do its children",
       {objectRecord("unused", {eventRecord("part", 1)}), eventRecord("after", 7)},
       "    Backend (after): 7 us\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(reportOf(c.events, false), c.text);
  }
}

TEST(BackendReport, LeavesFixedPrecisionZero) {
  std::ostringstream out;
  out.precision(3);
  writeBackendReportLines(out, {eventRecord("step", 1)}, false);
  out << 2.5;
  EXPECT_EQ(out.str(), "    Backend (step): 1 us\n2");
}

TEST(BackendReport, ObjectDumps) {
  struct Case {
    const char* what;
    std::vector<std::string> existing; // files present before the report
    std::string message;               // relative to the temporary directory
    size_t children;
    bool dumpObjects;
    std::vector<std::string> written;
  };
  const Case cases[] = {
      {"next free counter", {"trace.bin", "trace_1.bin"}, "trace.bin", 0, true, {"trace_2.bin"}},
      {"counter on the unchanged base",
       {"log.bin", "log_1.bin", "log_2.bin"},
       "log.bin",
       0,
       true,
       {"log_3.bin"}},
      {"no extension", {"blob"}, "blob", 0, true, {"blob_1"}},
      {"last dot only", {"a.b.c"}, "a.b.c", 0, true, {"a.b_1.c"}},
      {"one more dump per child", {}, "x.bin", 2, true, {"x.bin", "x_1.bin", "x_2.bin"}},
      {"extended report off", {}, "x.bin", 2, false, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    TempDir dir;
    for (const std::string& name : c.existing)
      dir.write(name, std::string("old"));
    EventRecord object = objectRecord((dir.path() / c.message).string(),
                                      EventList(c.children, eventRecord("part", 1)));
    EXPECT_EQ(reportOf({object}, c.dumpObjects), "");
    for (const std::string& name : c.written)
      EXPECT_EQ(readFile(dir.path() / name), objectBytes) << name;
    size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(dir.path()))
      ++files;
    EXPECT_EQ(files, c.existing.size() + c.written.size());
  }
}

TEST(BackendReport, UnwritableObjectFileIsReported) {
  struct Case {
    const char* what;
    std::string message;
    std::string reported;
  };
  TempDir dir;
  std::filesystem::create_directory(dir.path() / "out.d");
  dir.write("out.d/blob", std::string("old"));
  const std::string root = dir.path().string();
  const Case cases[] = {
      {"missing directory", root + "/missing/x.bin", root + "/missing/x.bin"},
      {"a dot in the directory takes the counter", root + "/out.d/blob", root + "/out_1.d/blob"},
      {"empty name", "", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    testing::CapturingLogger logger;
    EXPECT_EQ(reportOf({objectRecord(c.message), eventRecord("after", 7)}, true),
              "    Backend (after): 7 us\n");
    EXPECT_EQ(logger.texts(logError),
              std::vector<std::string>{"Invalid output fileName: [" + c.reported + "]"});
  }
}

} // namespace
} // namespace kvt::profiling
