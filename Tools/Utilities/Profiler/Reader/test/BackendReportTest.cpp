// The object dump files of the base reader's OBJECT events, which need a directory to look at;
// the golden cases pin the report's lines.
#include "text/BackendReport.h"

#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/EventRecords.h"
#include "support/TestFiles.h"
#include "text/Units.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kvt::profiling {
namespace {

using testing::eventRecord;
using testing::TempDir;

const std::string objectBytes("a\0\n\xFF", 4);

EventRecord objectRecord(const std::string& fileName, size_t children = 0) {
  EventRecord record =
      eventRecord("blob", 0, unitObject, 0, EventList(children, eventRecord("part", 1)));
  record.value.dataType = dataTypeBytes;
  record.message = fileName;
  record.bytes.assign(objectBytes.begin(), objectBytes.end());
  return record;
}

std::string reportOf(const EventList& events, bool dumpObjects) {
  std::ostringstream out;
  writeBackendReportLines(out, events, dumpObjects);
  return out.str();
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
       {"a.bin", "a_1.bin", "a_2.bin"},
       "a.bin",
       0,
       true,
       {"a_3.bin"}},
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
    EXPECT_EQ(
        reportOf({objectRecord((dir.path() / c.message).string(), c.children)}, c.dumpObjects), "");
    for (const std::string& name : c.written)
      EXPECT_EQ(testing::readFile(dir.path() / name), objectBytes) << name;
    const auto files = std::distance(std::filesystem::directory_iterator(dir.path()), {});
    EXPECT_EQ(size_t(files), c.existing.size() + c.written.size());
  }
}

TEST(BackendReport, UnwritableObjectFileIsReported) {
  TempDir dir;
  std::filesystem::create_directory(dir.path() / "out.d");
  dir.write("out.d/blob", std::string("old"));
  const std::string root = dir.path().string();
  struct Case {
    const char* what;
    std::string message;
    std::string reported;
  };
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
