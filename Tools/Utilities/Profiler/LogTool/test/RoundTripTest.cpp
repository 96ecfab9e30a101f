// Logs survive a dump and a build byte for byte: every fixture and golden log of the reader.
#include "ToolRun.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

using testing::runTool;
using testing::ToolRun;

TEST(LogRoundTrip, ReaderTestLogsComeBackIdentical) {
  const std::vector<std::string> logs = testing::fixtureAndGoldenLogs();
  ASSERT_FALSE(logs.empty());
  for (const std::string& log : logs) {
    SCOPED_TRACE(log);
    const testing::TempDir dir;
    const ToolRun dump = runTool({"dump", log});
    ASSERT_EQ(dump.exitCode, 0) << dump.err;
    const std::string rebuilt = (dir.path() / "rebuilt.log").string();
    const ToolRun build = runTool({"build", dir.write("dump.json", dump.out), "-o", rebuilt});
    ASSERT_EQ(build.exitCode, 0) << build.err;
    EXPECT_TRUE(testing::readFile(rebuilt) == testing::readFile(log));
  }
}

} // namespace
} // namespace kvt::profiling
