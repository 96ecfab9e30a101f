// A whole parse through the reader: chunks, header, reports, failures and what stays behind.
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
  MessageSpec spec;
  spec.stampTimestamp = timestamp;
  spec.methodType = 1;
  spec.timing = TimingSpec{0, 10};
  spec.events = std::vector{event};
  spec.graphName = "g";
  return spec;
}

ChunkSpec chunkOf(std::vector<MessageSpec> messages, std::optional<std::string> version = {}) {
  ChunkSpec chunk;
  chunk.messages = std::move(messages);
  if (version) {
    chunk.header = HeaderSpec();
    chunk.header->timeScale = 2.5f;
    chunk.header->epochTimestampUs = 11;
    chunk.header->steadyClockTimestamp = 12;
    chunk.header->netRunVersion = version;
    chunk.header->backendVersion = "backend " + *version;
  }
  return chunk;
}

TEST(ParseLog, ReadsTheHeaderAndMessagesOfAFixture) {
  const ParsedLog log = testing::parseLogFile(testing::fixtureLog("header-and-compose"));
  ASSERT_TRUE(log.parsed);
  const LogHeaderDetails& header = log.reader->headerDetails();
  EXPECT_TRUE(header.headerSaved);
  EXPECT_EQ(header.timeScale, 1000.0f);
  EXPECT_EQ(header.epochTimestampUs, 1698917415000000u);
  EXPECT_EQ(header.steadyClockTimestamp, 5123456789u);
  EXPECT_EQ(header.netRunVersion, "v1.0.0");
  EXPECT_EQ(header.backendVersion, "v2.1.0");
  EXPECT_EQ(modelText(log.reader->eventModel()), "composeGraphsTiming 7000/812");
  EXPECT_EQ(log.printed, "");
}

TEST(ParseLog, KeepsTheFirstHeaderFromWhicheverChunkHasOne) {
  struct Case {
    const char* what;
    std::vector<ChunkSpec> chunks;
    const char* version;
  };
  const Case cases[] = {
      {"header in a later chunk",
       {chunkOf({execute(1)}), chunkOf({execute(2)}, "second")},
       "second"},
      {"two headers", {chunkOf({execute(1)}, "first"), chunkOf({execute(2)}, "second")}, "first"},
      {"header in a chunk without messages",
       {chunkOf({}, "first"), chunkOf({execute(1), execute(2)})},
       "first"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ParsedLog log = parseChunks(c.chunks);
    ASSERT_TRUE(log.parsed);
    const LogHeaderDetails& header = log.reader->headerDetails();
    EXPECT_TRUE(header.headerSaved);
    EXPECT_EQ(header.netRunVersion, c.version);
    EXPECT_EQ(header.backendVersion, std::string("backend ") + c.version);
    EXPECT_EQ(header.timeScale, 2.5f);
    EXPECT_EQ(header.epochTimestampUs, 11u);
    EXPECT_EQ(header.steadyClockTimestamp, 12u);
    EXPECT_EQ(log.reader->eventModel().executionsByGraph.find("g")->size(), 2u);
  }
}

TEST(ParseLog, AHeaderWithoutStringsLeavesThemEmpty) {
  ChunkSpec chunk = chunkOf({});
  chunk.header = HeaderSpec{};
  const ParsedLog log = parseChunks(std::vector{chunk});
  ASSERT_TRUE(log.parsed);
  const LogHeaderDetails& header = log.reader->headerDetails();
  EXPECT_TRUE(header.headerSaved);
  EXPECT_EQ(header.netRunVersion, "");
  EXPECT_EQ(header.timeScale, 0.0f);
}

TEST(ParseLog, ReportsTheEndOfEachChunk) {
  CapturingLogger logger;
  const ParsedLog log =
      parseChunks(std::vector{chunkOf({execute(1), execute(2)}), chunkOf({execute(3)}, "v")});
  ASSERT_TRUE(log.parsed);
  EXPECT_EQ(logger.texts(logVerbose),
            (std::vector<std::string>{
                "hdr is nullptr",
                "profiling::FlatBufferReaderUtil no more messages! (Message Counter: 2)",
                "profiling::KvtProfileLogReader reached EOF!",
                "profiling::FlatBufferReaderUtil no more messages! (Message Counter: 1)",
                "profiling::KvtProfileLogReader reached EOF!",
            }));
  EXPECT_TRUE(logger.texts(logError).empty());
}

TEST(ParseLog, GoesOnAfterAnUnknownMethodType) {
  CapturingLogger logger;
  MessageSpec unknown = execute(2);
  unknown.methodType = 42;
  const ParsedLog log = parseChunks(std::vector{chunkOf({execute(1), unknown, execute(3)})});
  ASSERT_TRUE(log.parsed);
  EXPECT_EQ(logger.texts(logError), std::vector<std::string>{"Unknown method type."});
  EXPECT_EQ(log.reader->eventModel().executionsByGraph.find("g")->size(), 2u);
}

TEST(ParseLog, TreatsFilesShorterThanASizePrefixAsEmpty) {
  struct Case {
    const char* what;
    std::vector<uint8_t> bytes;
  };
  const Case cases[] = {
      {"empty", {}},
      {"one byte", {1}},
      {"two bytes", {1, 2}},
      {"three bytes", {0xFF, 0xFF, 0xFF}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CapturingLogger logger;
    const testing::TempDir dir;
    const ParsedLog log = testing::parseLogFile(dir.write("short.log", c.bytes));
    EXPECT_TRUE(log.parsed);
    EXPECT_FALSE(log.reader->headerDetails().headerSaved);
    EXPECT_EQ(modelText(log.reader->eventModel()), "");
    EXPECT_EQ(log.printed, "");
    EXPECT_TRUE(logger.reports().empty());
  }
}

TEST(ParseLog, FailsOnAMissingFileWithoutTouchingTheModel) {
  CapturingLogger logger;
  const testing::TempDir dir;
  const std::string path = (dir.path() / "missing.log").string();
  const ParsedLog log = testing::parseLogFile(path);
  EXPECT_FALSE(log.parsed);
  EXPECT_EQ(logger.texts(logError),
            std::vector<std::string>{"Invalid or nonexistent file: " + path});
  EXPECT_EQ(modelText(log.reader->eventModel()), "");
}

// A corrupt chunk stops the parse: what came before stays, nothing is derived or printed.
TEST(ParseLog, KeepsTheChunksBeforeACorruptOne) {
  CapturingLogger logger;
  const std::vector<ChunkSpec> good = {chunkOf({execute(1)}, "v"), chunkOf({execute(2)})};
  std::vector<uint8_t> bytes = buildLog(good);
  const std::vector<uint8_t> corrupt = frameChunk(std::vector<uint8_t>(16, 0xAB));
  bytes.insert(bytes.begin() + ptrdiff_t(buildChunk(good[0]).size()), corrupt.begin(),
               corrupt.end());
  const testing::TempDir dir;
  const ParsedLog log = testing::parseLogFile(dir.write("corrupt.log", bytes));
  EXPECT_FALSE(log.parsed);
  EXPECT_EQ(logger.texts(logError), std::vector<std::string>{"Corrupted flatbuffer binary stream"});
  EXPECT_TRUE(log.reader->headerDetails().headerSaved);
  EXPECT_EQ(modelText(log.reader->eventModel()), "execution g 1/10 [a]");
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
