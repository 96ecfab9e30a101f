// A whole parse through the reader where the golden cases cannot go: a corrupt chunk after good
// ones, a very large chunk, the average's timestamp that no output prints.
#include "plugin/KvtProfileLogReader.h"
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/CollectedExecutions.h"
#include "support/LogSpecs.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

MessageSpec execute(uint64_t timestamp) {
  return testing::messageSpec(1, {testing::eventSpec("a", 0, 4)}, timestamp, {0, 10});
}

// A corrupt chunk stops the parse: what came before stays, nothing is derived or printed.
TEST(ParseLog, KeepsTheChunksBeforeACorruptOne) {
  ChunkSpec first = testing::chunkOf({execute(1)});
  first.header = HeaderSpec();
  std::vector<uint8_t> bytes = buildLog(std::vector{first, testing::chunkOf({execute(2)})});
  const std::vector<uint8_t> corrupt = frameChunk(std::vector<uint8_t>(16, 0xAB));
  bytes.insert(bytes.begin() + ptrdiff_t(buildChunk(first).size()), corrupt.begin(), corrupt.end());
  const testing::TempDir dir;
  KvtProfileLogReader reader(dir.write("corrupt.log", bytes), VisibilityLevel{1});
  testing::CollectedExecutions kept;
  reader.addExecutionConsumer(kept.consumer());
  testing::CapturingLogger logger;
  const testing::StdoutCapture printed;

  EXPECT_FALSE(reader.parseLog(false));

  EXPECT_EQ(logger.texts(logError), std::vector<std::string>{"Corrupted flatbuffer binary stream"});
  EXPECT_TRUE(reader.headerDetails().headerSaved);
  ASSERT_EQ(kept.byGraph.size(), 1u);
  ASSERT_EQ(kept.byGraph.find("g")->size(), 1u);
  EXPECT_EQ(kept.byGraph.find("g")->front().timestamp, 1u);
  EXPECT_TRUE(reader.eventModel().averageExecutionByGraph.empty());
  EXPECT_EQ(printed.text(), "");
}

// The verifier's table limit is far above a million; such a chunk is ordinary input.
TEST(ParseLog, ReadsAMillionMessageChunk) {
  const MessageSpec compose = testing::messageSpec(7, {}, 0, {0, 3});
  const testing::TempDir dir;
  KvtProfileLogReader reader(
      dir.write("large.log", buildLog(std::vector{
                                 testing::chunkOf(std::vector<MessageSpec>(1000000, compose))})),
      VisibilityLevel{1});
  ASSERT_TRUE(reader.parseLog(false));
  EXPECT_EQ(reader.eventModel().composeGraphsTiming.duration, 3u);
}

TEST(ParseLog, TheAverageKeepsTheLastExecutionsTimestampNotTheLargest) {
  const testing::TempDir dir;
  KvtProfileLogReader reader(
      dir.write("run.log",
                buildLog(std::vector{testing::chunkOf({execute(5), execute(9), execute(3)})})),
      VisibilityLevel{1});
  ASSERT_TRUE(reader.parseLog(false));
  EXPECT_EQ(reader.eventModel().averageExecutionByGraph.find("g")->timestamp, 3u);
}

} // namespace
} // namespace kvt::profiling
