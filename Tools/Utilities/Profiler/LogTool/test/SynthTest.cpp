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

TEST(LogSynth, ReaderParsesTheRunTheLogDescribes) {
  struct Case {
    const char* what;
    std::vector<std::string> options;
    bool queueWait;
    std::vector<uint32_t> stepDetailTypes;
  };
  const Case cases[] = {
      {"linting detail", {"--detail", "linting"}, false, {5001, 5002, 5003, 5004}},
      {"basic detail with queue wait", {"--detail", "basic", "--queue-wait"}, true, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const TempDir dir;
    std::vector<std::string> options = {"--graphs", "3", "--executions",         "4",
                                        "--steps",  "5", "--messages-per-chunk", "7"};
    options.insert(options.end(), c.options.begin(), c.options.end());
    const testing::ParsedLog parsed = testing::parseLogFile(synthesise(dir, "run.log", options));
    ASSERT_TRUE(parsed.parsed);
    EXPECT_EQ(parsed.printed, "");
    EXPECT_EQ(parsed.reader->headerDetails().netRunVersion, "v3.17.4");

    const EventModel& model = parsed.reader->eventModel();
    EXPECT_TRUE(model.libLoadSlot.present);
    EXPECT_TRUE(model.initSlot.present);
    EXPECT_GT(model.unnamedTiming.duration, 0u);
    EXPECT_GT(model.composeGraphsTiming.duration, 0u);
    EXPECT_TRUE(model.executeOverallSlot.present);
    EXPECT_EQ(model.executeOverallSlot.events.size(), 2u);
    EXPECT_EQ(model.deinitSlot.events.size(), 1u);
    EXPECT_EQ(model.finalizeByGraph.size(), 3u);
    EXPECT_EQ(model.averageExecutionByGraph.size(), 3u);
    EXPECT_EQ(model.queueWaitMode, c.queueWait);
    EXPECT_EQ(model.queueWaitByGraph.size(), c.queueWait ? 3u : 0u);

    std::vector<std::string> graphs;
    for (const auto& [graph, executions] : model.executionsByGraph) {
      graphs.push_back(graph);
      ASSERT_EQ(executions.size(), 4u);
      for (const ExecutionEntry& execution : executions) {
        ASSERT_EQ(execution.events.size(), c.queueWait ? 2u : 1u);
        EXPECT_EQ(execution.events.front().eventType, c.queueWait ? 405u : 400u);
        const EventList& steps = execution.events.back().children;
        ASSERT_EQ(steps.size(), 5u);
        for (const EventRecord& step : steps) {
          EXPECT_EQ(step.eventType, 404u);
          std::vector<uint32_t> detailTypes;
          for (const EventRecord& detail : step.children)
            detailTypes.push_back(detail.eventType);
          EXPECT_EQ(detailTypes, c.stepDetailTypes);
        }
      }
    }
    EXPECT_EQ(graphs, (std::vector<std::string>{"graph_0", "graph_1", "graph_2"}));
  }
}

} // namespace
} // namespace kvt::profiling
