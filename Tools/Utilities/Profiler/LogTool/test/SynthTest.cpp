// The synthesised log: deterministic for a seed, written through a link, the committed example
// still what it claims to be, and a log the trace reader parses into the run it describes.
#include "TextSearch.h"
#include "ToolRun.h"
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/CollectedExecutions.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

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

// The committed example pins the log's layout; this checks that the trace reader takes every
// graph, execution and queue wait from a run and draws every step of a linting run, while it
// refuses a basic one, whose steps lack the sub-events a trace is drawn from.
TEST(LogSynth, TraceReaderDrawsEveryStepOfALintingRunOnly) {
  for (const bool linting : {true, false}) {
    SCOPED_TRACE(linting ? "linting" : "basic");
    const TempDir dir;
    const std::string log = synthesise(dir, "run.log",
                                       {"--graphs", "2", "--executions", "3", "--steps", "4",
                                        "--queue-wait", "--detail", linting ? "linting" : "basic"});
    KvtProfileLogReaderChrometrace reader(log, VisibilityLevel{1});
    testing::CollectedExecutions kept;
    reader.addExecutionConsumer(kept.consumer());
    testing::CapturingLogger logger;
    const testing::StdoutCapture printed;
    ASSERT_TRUE(reader.parseLog(false));
    const std::string tracePath = (dir.path() / "trace.json").string();
    EXPECT_EQ(reader.writeOutputs(tracePath), linting);

    EXPECT_EQ(reader.eventModel().queueWaitByGraph.size(), 2u);
    std::vector<std::string> graphs;
    for (const auto& [graph, executions] : kept.byGraph) {
      graphs.push_back(graph);
      EXPECT_EQ(executions.size(), 3u);
    }
    EXPECT_EQ(graphs, (std::vector<std::string>{"graph_0", "graph_1"}));
    if (!linting) {
      EXPECT_EQ(logger.texts(logError),
                std::vector<std::string>{"Log file contains incompatible data! Please provide log "
                                         "file generated using the linting profile!"});
      continue;
    }
    const std::string trace = readFile(tracePath);
    size_t steps = 0, searchFrom = 0;
    for (const auto& [graph, execution] : reader.eventModel().averageExecutionByGraph)
      for (const EventRecord& record : execution.events)
        for (const EventRecord& step : record.children) {
          ++steps;
          searchFrom = trace.find("\"name\": \"" + step.identifier + "\"", searchFrom);
          ASSERT_NE(searchFrom, std::string::npos) << step.identifier;
        }
    EXPECT_EQ(steps, 8u);
    EXPECT_GE(testing::countOf(trace, "\"tid\": \"Foreground\""), steps);
    EXPECT_EQ(testing::countOf(trace, "\"tid\": \"Background\""),
              testing::countOf(trace, "\"tid\": \"Foreground\""));
    EXPECT_NE(printed.text().find("Execute Stats (Average):"), std::string::npos);
  }
}

} // namespace
} // namespace kvt::profiling
