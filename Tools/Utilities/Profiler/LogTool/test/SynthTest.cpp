// The synthesised log where the golden cases cannot go: the committed example still what it
// claims to be.
#include "ToolRun.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kvt::profiling {
namespace {

using testing::readFile;
using testing::runTool;
using testing::TempDir;
using testing::ToolRun;

std::string synthesise(const TempDir& dir, const std::string& name,
                       std::vector<std::string> options) {
  const std::string log = (dir.path() / name).string();
  std::vector<std::string> args = {"synth", "-o", log};
  args.insert(args.end(), options.begin(), options.end());
  const ToolRun synth = runTool(args);
  EXPECT_EQ(synth.exitCode, 0) << synth.err;
  EXPECT_EQ(synth.out + synth.err, "");
  return log;
}

TEST(LogSynth, ExampleIsTheDumpOfASynthesisedRun) {
  // Remade as the log tool's CMakeLists.txt says when the generator's figures change.
  const TempDir dir;
  const std::string log = synthesise(
      dir, "example.log",
      {"--graphs", "2", "--executions", "3", "--steps", "3", "--messages-per-chunk", "8"});
  const ToolRun dump = runTool({"dump", log});
  ASSERT_EQ(dump.exitCode, 0) << dump.err;
  EXPECT_TRUE(dump.out == readFile(KVT_EXAMPLE_JSON));
}

} // namespace
} // namespace kvt::profiling
