// The synthesised log: deterministic for a seed, refused output reported, the committed example
// still what it claims to be, and a log the reader parses into the run it describes.
#include "ToolRun.h"
#include "support/ParsedLog.h"
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

TEST(LogSynth, SameSeedSameLogOtherSeedOtherFigures) {
  const TempDir dir;
  const std::string first = readFile(synthesise(dir, "first.log", {"--seed", "5"}));
  const std::string again = readFile(synthesise(dir, "again.log", {"--seed", "5"}));
  const std::string other = readFile(synthesise(dir, "other.log", {"--seed", "6"}));
  EXPECT_FALSE(first.empty());
  EXPECT_TRUE(first == again);
  EXPECT_FALSE(first == other);
}

TEST(LogSynth, UnwritableOutputIsReported) {
  const TempDir dir;
  const std::string log = (dir.path() / "no-such-dir" / "run.log").string();
  const ToolRun synth = runTool({"synth", "-o", log});
  EXPECT_EQ(synth.exitCode, 1);
  EXPECT_EQ(synth.err, "kvt-profile-log synth: cannot write " + log + "\n");
}

TEST(LogSynth, WritesThroughASymbolicLinkAndKeepsIt) {
  // Regression: a log that was no regular file was replaced by renaming a finished file over it,
  // which turned -o /dev/null into an ordinary file.
  const TempDir dir;
  const std::filesystem::path target = dir.path() / "target.log";
  const std::filesystem::path link = dir.path() / "link.log";
  std::filesystem::create_symlink(target, link);
  EXPECT_EQ(runTool({"synth", "-o", link.string()}).exitCode, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_TRUE(readFile(target) == readFile(synthesise(dir, "direct.log", {})));
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

// The committed example pins the log's layout; this checks that the reader takes every graph and
// execution from it, queue waits included.
TEST(LogSynth, ReaderParsesTheRunTheLogDescribes) {
  const TempDir dir;
  const testing::ParsedLog parsed = testing::parseLogFile(synthesise(
      dir, "run.log", {"--graphs", "3", "--executions", "4", "--steps", "5", "--queue-wait"}));
  ASSERT_TRUE(parsed.parsed);
  EXPECT_EQ(parsed.printed, "");
  const EventModel& model = parsed.reader->eventModel();
  EXPECT_EQ(model.queueWaitByGraph.size(), 3u);
  std::vector<std::string> graphs;
  for (const auto& [graph, executions] : parsed.executions->byGraph) {
    graphs.push_back(graph);
    EXPECT_EQ(executions.size(), 4u);
  }
  EXPECT_EQ(graphs, (std::vector<std::string>{"graph_0", "graph_1", "graph_2"}));
}

} // namespace
} // namespace kvt::profiling
