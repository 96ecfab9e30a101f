// A whole parse through the reader where the golden cases cannot go: short and corrupt files, an
// unknown method type, a very large chunk.
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/ModelText.h"
#include "support/ParsedLog.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;
using testing::modelText;
using testing::parseChunks;
using testing::ParsedLog;

MessageSpec execute(uint64_t timestamp) {
  EventSpec event;
  event.identifier = "a";
  event.valueU64 = 4;
  MessageSpec described;
  described.stampTimestamp = timestamp;
  described.methodType = 1;
  described.timing = TimingSpec{0, 10};
  described.events = std::vector{event};
  described.graphName = "g";
  return described;
}

ChunkSpec chunkOf(std::vector<MessageSpec> messages, bool withHeader = false) {
  ChunkSpec chunk;
  chunk.messages = std::move(messages);
  if (withHeader)
    chunk.header = HeaderSpec();
  return chunk;
}

TEST(ParseLog, GoesOnAfterAnUnknownMethodType) {
  CapturingLogger logger;
  MessageSpec unknown = execute(2);
  unknown.methodType = 42;
  const ParsedLog log = parseChunks(std::vector{chunkOf({execute(1), unknown, execute(3)})});
  ASSERT_TRUE(log.parsed);
  EXPECT_EQ(logger.texts(logError), std::vector<std::string>{"Unknown method type."});
  EXPECT_EQ(log.executions->byGraph.find("g")->size(), 2u);
}

TEST(ParseLog, TreatsFilesShorterThanASizePrefixAsEmpty) {
  for (const std::vector<uint8_t>& bytes : {std::vector<uint8_t>{}, {0xFF, 0xFF, 0xFF}}) {
    SCOPED_TRACE(bytes.size());
    CapturingLogger logger;
    const testing::TempDir dir;
    const ParsedLog log = testing::parseLogFile(dir.write("short.log", bytes));
    EXPECT_TRUE(log.parsed);
    EXPECT_FALSE(log.reader->headerDetails().headerSaved);
    EXPECT_EQ(modelText(log.reader->eventModel()), "");
    EXPECT_EQ(log.printed, "");
    EXPECT_TRUE(logger.reports().empty());
  }
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
  EXPECT_EQ(modelText(log.reader->eventModel(), log.executions->byGraph), "execution g 1/10 [a]");
  EXPECT_EQ(log.printed, "");
}

// The verifier's table limit is far above a million; such a chunk is ordinary input.
TEST(ParseLog, ReadsAMillionMessageChunk) {
  constexpr size_t messages = 1000000;
  MessageSpec compose;
  compose.methodType = 7;
  compose.timing = TimingSpec{0, 3};
  const ParsedLog log = testing::parseMessages(std::vector<MessageSpec>(messages, compose));
  ASSERT_TRUE(log.parsed);
  EXPECT_EQ(log.reader->eventModel().composeGraphsTiming.duration, 3u);
}

} // namespace
} // namespace kvt::profiling
