// The trace reader's output operation refusing an output file; the golden cases cover the rest.
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
      {"a directory, unwritable as a file even for root", dir.path().string(),
       "Invalid output chrometraceFile: [" + dir.path().string() + "]"},
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

} // namespace
} // namespace kvt::profiling
