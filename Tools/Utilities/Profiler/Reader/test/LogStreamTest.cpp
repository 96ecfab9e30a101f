// The chunk verifier's acceptance and rejection rules.
#include "log/FlatBufferReaderUtil.h"
#include "log/LogWriter.h"
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/LogSpecs.h"

#include <gtest/gtest.h>

#include <algorithm>

#if !defined(_WIN32)
#include <sys/mman.h>
#endif

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;

// A chunk's buffer without its size prefix, as loadBuffer takes it.
std::vector<uint8_t> bufferOf(const ChunkSpec& chunk) {
  std::vector<uint8_t> bytes = buildChunk(chunk);
  bytes.erase(bytes.begin(), bytes.begin() + 4);
  return bytes;
}

using testing::chunkOf;

MessageSpec message(int8_t methodType, uint64_t timestamp = 0) {
  return testing::messageSpec(methodType, {}, timestamp, {10, 20});
}

EventSpec nestedEvents(int depth) {
  EventSpec event;
  event.identifier = "level";
  if (depth > 1)
    event.children = std::vector<EventSpec>{nestedEvents(depth - 1)};
  return event;
}

TEST(FlatBufferReaderUtil, AcceptsAndRejectsBuffers) {
  auto withRootOffset = [](uint32_t offset) {
    std::vector<uint8_t> buffer = bufferOf(chunkOf({message(7)}));
    for (size_t i = 0; i < 4; ++i)
      buffer[i] = uint8_t(offset >> (8 * i));
    return buffer;
  };
  auto withMessage = [](void (*change)(MessageSpec&)) {
    MessageSpec described = message(1);
    change(described);
    return bufferOf(chunkOf({described}));
  };
  std::vector<uint8_t> unterminated = withMessage([](MessageSpec& m) { m.graphName = "graph"; });
  const std::string name = "graph";
  std::search(unterminated.begin(), unterminated.end(), name.begin(), name.end())[5] = 'x';
  std::vector<uint8_t> elevenBytes = bufferOf(chunkOf({message(7)}));
  elevenBytes.resize(11);

  struct Case {
    const char* what;
    std::vector<uint8_t> buffer;
    bool accepted;
  };
  const Case cases[] = {
      {"valid chunk", bufferOf(chunkOf({message(7)})), true},
      {"root without messages", bufferOf(ChunkSpec{}), true},
      {"message without method type", withMessage([](MessageSpec& m) { m.methodType.reset(); }),
       true},
      {"11 bytes", elevenBytes, false},
      {"empty", {}, false},
      {"root offset 0", withRootOffset(0), false},
      {"root offset 1", withRootOffset(1), false},
      // The writer's padding there reads as a table with an empty vtable: a root with nothing.
      {"root offset 4", withRootOffset(4), true},
      {"root offset with bit 31", withRootOffset(0x80000010u), false},
      {"root offset at the end", withRootOffset(uint32_t(withRootOffset(0).size())), false},
      {"all zeros", std::vector<uint8_t>(64, 0), false},
      {"message without stamp", withMessage([](MessageSpec& m) { m.stampTimestamp.reset(); }),
       false},
      {"message without timing", withMessage([](MessageSpec& m) { m.timing.reset(); }), false},
      {"string without terminator", unterminated, false},
      // 64 tables deep: the root, the message, then 62 levels of events.
      {"event tree one level short of the depth limit",
       withMessage([](MessageSpec& m) { m.events = std::vector{nestedEvents(61)}; }), true},
      {"event tree at the depth limit",
       withMessage([](MessageSpec& m) { m.events = std::vector{nestedEvents(62)}; }), true},
      {"event tree one level past the depth limit",
       withMessage([](MessageSpec& m) { m.events = std::vector{nestedEvents(63)}; }), false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CapturingLogger logger;
    FlatBufferReaderUtil reader;
    EXPECT_EQ(reader.loadBuffer(c.buffer), c.accepted);
    EXPECT_EQ(logger.contains(logError, "Corrupted flatbuffer binary stream"), !c.accepted);
  }
}

#if !defined(_WIN32) // lazily mapped pages are POSIX's
// The verifier cannot hold a buffer of its largest size: a valid chunk at the start of one is
// refused. Only the pages written here take memory.
TEST(FlatBufferReaderUtil, RefusesABufferOfTheVerifiersLargestSize) {
  void* pages = mmap(nullptr, ChunkLimits::maxBytes, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(pages, MAP_FAILED);
  const std::vector<uint8_t> chunk = bufferOf(chunkOf({message(7)}));
  std::copy(chunk.begin(), chunk.end(), static_cast<uint8_t*>(pages));
  CapturingLogger logger;
  FlatBufferReaderUtil reader;
  EXPECT_FALSE(
      reader.loadBuffer(std::span(static_cast<const uint8_t*>(pages), ChunkLimits::maxBytes)));
  EXPECT_TRUE(
      reader.loadBuffer(std::span(static_cast<const uint8_t*>(pages), ChunkLimits::maxBytes - 1)));
  munmap(pages, ChunkLimits::maxBytes);
}
#endif

TEST(FlatBufferReaderUtil, ARejectedBufferKeepsThePreviousOne) {
  FlatBufferReaderUtil reader;
  const std::vector<uint8_t> good = bufferOf(chunkOf({message(7, 1), message(7, 2)}));
  ASSERT_TRUE(reader.loadBuffer(good));
  EXPECT_FALSE(reader.loadBuffer(std::vector<uint8_t>(11, 0)));
  EXPECT_EQ(reader.nextMessage()->stamp()->timestamp(), 1u);
}

} // namespace
} // namespace kvt::profiling
