// The trace reader's output operation: where its trace goes and when the statistics are printed.
#include "trace/KvtProfileLogReaderChrometrace.h"

#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;
using testing::StdoutCapture;
using testing::TempDir;

TEST(ChrometraceWriter, RefusesMissingOrUnopenableFiles) {
  TempDir dir;
  struct Case {
    const char* what;
    std::string path;
    std::string reported;
  };
  const std::string unopenable = (dir.path() / "missing" / "trace.json").string();
  const Case cases[] = {
      {"empty name", "", "Output chrometraceFile not provided."},
      {"directory does not exist", unopenable,
       "Invalid output chrometraceFile: [" + unopenable + "]"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    KvtProfileLogReaderChrometrace reader("unused.log", VisibilityLevel(5));
    CapturingLogger logger;
    StdoutCapture stdoutText;
    EXPECT_FALSE(reader.writeOutputs(c.path));
    EXPECT_EQ(logger.texts(logError), std::vector<std::string>{c.reported});
    EXPECT_EQ(stdoutText.text(), "");
  }
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "missing"));
}

TEST(ChrometraceWriter, UnparsedReaderWritesAnEmptyTraceAndTheStatistics) {
  TempDir dir;
  const std::string path = (dir.path() / "trace.json").string();
  dir.write("trace.json", std::string("previous contents, longer than the new ones"));
  KvtProfileLogReaderChrometrace reader("unused.log", VisibilityLevel(5));
  StdoutCapture stdoutText;
  ASSERT_TRUE(reader.writeOutputs(path));
  EXPECT_EQ(testing::readFile(path), "{\n    \"traceEvents\": []\n}\n");
  // No header, so the statistics open with an empty line; no overall or library-load section.
  EXPECT_EQ(stdoutText.text(), "\n"
                               "Kvt Init/Prepare/Finalize/De-Init/Execute/Lib-Load Statistics:\n"
                               "------------------------------------------------------------\n"
                               "Init Stats:\n-----------\n    NetRun: 0 us\n\n"
                               "Compose Graphs Stats:\n--------------\n    NetRun: 0 us\n\n"
                               "Finalize Stats:\n---------------\n\n"
                               "De-Init Stats:\n--------------\n    NetRun: 0 us\n\n"
                               "Execute Stats (Average):\n------------------------\n"
                               "Total Inference Time: \n---------------------\n\n");
}

} // namespace
} // namespace kvt::profiling
