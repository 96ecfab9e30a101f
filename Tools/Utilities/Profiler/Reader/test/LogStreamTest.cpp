// The chunk verifier's acceptance and rejection rules.
#include "log/FlatBufferReaderUtil.h"
#include "log/LogWriter.h"
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;

// A chunk's buffer without its size prefix, as loadBuffer takes it.
std::vector<uint8_t> bufferOf(const ChunkSpec& chunk) {
  std::vector<uint8_t> bytes = buildChunk(chunk);
  bytes.erase(bytes.begin(), bytes.begin() + 4);
  return bytes;
}

MessageSpec message(int8_t methodType, uint64_t timestamp = 0) {
  MessageSpec described;
  described.methodType = methodType;
  described.stampTimestamp = timestamp;
  described.timing = TimingSpec{10, 20};
  return described;
}

ChunkSpec chunkOf(std::vector<MessageSpec> messages) {
  ChunkSpec chunk;
  chunk.messages = std::move(messages);
  return chunk;
}

EventSpec nestedEvents(int depth) {
  EventSpec event;
  event.identifier = "level";
  if (depth > 1)
    event.children = std::vector<EventSpec>{nestedEvents(depth - 1)};
  return event;
}

void writeRootOffset(std::vector<uint8_t>& buffer, uint32_t offset) {
  for (int i = 0; i < 4; ++i)
    buffer[i] = uint8_t(offset >> (8 * i));
}

TEST(FlatBufferReaderUtil, AcceptsAndRejectsBuffers) {
  struct Case {
    const char* what;
    std::function<std::vector<uint8_t>()> makeBuffer;
    bool accepted;
  };
  const Case cases[] = {
      {"valid chunk", [] { return bufferOf(chunkOf({message(7)})); }, true},
      {"root without messages", [] { return bufferOf(ChunkSpec{}); }, true},
      {"message without method type",
       [] {
         MessageSpec described = message(0);
         described.methodType.reset();
         return bufferOf(chunkOf({described}));
       },
       true},
      {"11 bytes",
       [] {
         std::vector<uint8_t> buffer = bufferOf(chunkOf({message(7)}));
         buffer.resize(11);
         return buffer;
       },
       false},
      {"empty", [] { return std::vector<uint8_t>(); }, false},
      {"root offset 0",
       [] {
         std::vector<uint8_t> buffer = bufferOf(chunkOf({message(7)}));
         writeRootOffset(buffer, 0);
         return buffer;
       },
       false},
      {"root offset with bit 31",
       [] {
         std::vector<uint8_t> buffer = bufferOf(chunkOf({message(7)}));
         writeRootOffset(buffer, 0x80000010u);
         return buffer;
       },
       false},
      {"root offset at the end",
       [] {
         std::vector<uint8_t> buffer = bufferOf(chunkOf({message(7)}));
         writeRootOffset(buffer, uint32_t(buffer.size()));
         return buffer;
       },
       false},
      {"all zeros", [] { return std::vector<uint8_t>(64, 0); }, false},
      {"message without stamp",
       [] {
         MessageSpec described = message(7);
         described.stampTimestamp.reset();
         return bufferOf(chunkOf({described}));
       },
       false},
      {"message without timing",
       [] {
         MessageSpec described = message(7);
         described.timing.reset();
         return bufferOf(chunkOf({described}));
       },
       false},
      {"string without terminator",
       [] {
         MessageSpec described = message(1);
         described.graphName = "graphname";
         std::vector<uint8_t> buffer = bufferOf(chunkOf({described}));
         const std::string name = "graphname";
         auto at = std::search(buffer.begin(), buffer.end(), name.begin(), name.end());
         at[name.size()] = 'x'; // the NUL after the name
         return buffer;
       },
       false},
      {"event tree within the depth limit",
       [] {
         MessageSpec described = message(1);
         described.events = std::vector<EventSpec>{nestedEvents(55)};
         return bufferOf(chunkOf({described}));
       },
       true},
      {"event tree deeper than the depth limit",
       [] {
         MessageSpec described = message(1);
         described.events = std::vector<EventSpec>{nestedEvents(70)};
         return bufferOf(chunkOf({described}));
       },
       false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CapturingLogger logger;
    FlatBufferReaderUtil reader;
    const std::vector<uint8_t> buffer = c.makeBuffer();
    EXPECT_EQ(reader.loadBuffer(buffer), c.accepted);
    EXPECT_EQ(logger.contains(logError, "Corrupted flatbuffer binary stream"), !c.accepted);
  }
}

TEST(FlatBufferReaderUtil, ARejectedBufferKeepsThePreviousOne) {
  FlatBufferReaderUtil reader;
  const std::vector<uint8_t> good = bufferOf(chunkOf({message(7, 1), message(7, 2)}));
  const std::vector<uint8_t> bad(11, 0);
  ASSERT_TRUE(reader.loadBuffer(good));
  EXPECT_FALSE(reader.loadBuffer(bad));
  EXPECT_EQ(reader.nextMessage()->stamp()->timestamp(), 1u);
}

} // namespace
} // namespace kvt::profiling
