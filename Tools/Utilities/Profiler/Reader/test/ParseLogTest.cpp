// A whole parse through the reader where the golden cases cannot go: a corrupt chunk after good
// ones, a very large chunk.
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/LogSpecs.h"
#include "support/ParsedLog.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;
using testing::parseChunks;
using testing::ParsedLog;

MessageSpec execute(uint64_t timestamp) {
  return testing::messageSpec(1, {testing::eventSpec("a", 0, 4)}, timestamp, {0, 10});
}

ChunkSpec chunkOf(std::vector<MessageSpec> messages, bool withHeader = false) {
  ChunkSpec chunk = testing::chunkOf(std::move(messages));
  if (withHeader)
    chunk.header = HeaderSpec();
  return chunk;
}

// A corrupt chunk stops the parse: what came before stays, nothing is derived or printed.
TEST(ParseLog, KeepsTheChunksBeforeACorruptOne) {
  CapturingLogger logger;
  const std::vector<ChunkSpec> good = {chunkOf({execute(1)}, true), chunkOf({execute(2)})};
  std::vector<uint8_t> bytes = buildLog(good);
  const std::vector<uint8_t> corrupt = frameChunk(std::vector<uint8_t>(16, 0xAB));
  bytes.insert(bytes.begin() + ptrdiff_t(buildChunk(good[0]).size()), corrupt.begin(),
               corrupt.end());
  const testing::TempDir dir;
  const ParsedLog log = testing::parseLogFile(dir.write("corrupt.log", bytes));
  EXPECT_FALSE(log.parsed);
  EXPECT_EQ(logger.texts(logError), std::vector<std::string>{"Corrupted flatbuffer binary stream"});
  EXPECT_TRUE(log.reader->headerDetails().headerSaved);
  const std::vector<ExecutionEntry>* executions = log.executions->byGraph.find("g");
  ASSERT_NE(executions, nullptr);
  ASSERT_EQ(executions->size(), 1u);
  EXPECT_EQ(executions->front().timestamp, 1u);
  EXPECT_TRUE(log.reader->eventModel().averageExecutionByGraph.empty());
  EXPECT_EQ(log.printed, "");
}

// The verifier's table limit is far above a million; such a chunk is ordinary input.
TEST(ParseLog, ReadsAMillionMessageChunk) {
  constexpr size_t messages = 1000000;
  const MessageSpec compose = testing::messageSpec(7, {}, 0, {0, 3});
  const ParsedLog log = testing::parseMessages(std::vector<MessageSpec>(messages, compose));
  ASSERT_TRUE(log.parsed);
  EXPECT_EQ(log.reader->eventModel().composeGraphsTiming.duration, 3u);
}

} // namespace
} // namespace kvt::profiling
