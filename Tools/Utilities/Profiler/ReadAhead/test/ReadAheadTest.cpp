// Reading ahead changes nothing a reader sees: every fault position gives the messages, the
// drained chunks and the fault of a serial read, whatever the window and the helpers.
#include "ReadAheadStream.h"
#include "ReadThreads.h"

#include "log/LogWriter.h"
#include "log/ParseDriver.h"
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/LogSpecs.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;
using testing::TempDir;

constexpr size_t chunkCount = 24;

// What a read shows its caller.
struct Seen {
  std::vector<uint64_t> stamps;
  std::vector<std::string> errors;
  std::string fault; // the description, or "complete"
  uint64_t chunksRead = 0;
  uint64_t bytesRead = 0;

  bool operator==(const Seen&) const = default;
};

Seen read(const std::string& path, const LogReadOptions& options, size_t throwAtChunk) {
  CapturingLogger logger;
  Seen seen;
  FlatBufferReaderUtil streamReader;
  size_t drained = 0;
  try {
    const LogReadResult result = readLogChunks(
        path, streamReader,
        [&] {
          if (++drained == throwAtChunk)
            throw std::runtime_error("the caller gave up");
          while (const schema::Message* message = streamReader.nextMessage())
            seen.stamps.push_back(message->stamp()->timestamp());
        },
        options);
    seen.fault = result.fault ? describeLogFault(*result.fault) : "complete";
    seen.chunksRead = result.chunksRead;
    seen.bytesRead = result.bytesRead;
  } catch (const std::runtime_error& error) {
    seen.fault = error.what();
  }
  seen.errors = logger.texts(logError);
  return seen;
}

// chunkCount chunks of one message each, stamped with their index; some larger than others so
// that the byte window counts.
std::vector<uint8_t> wholeLog() {
  std::vector<ChunkSpec> chunks;
  for (size_t i = 0; i < chunkCount; ++i) {
    std::vector<EventSpec> events(i % 5 == 0 ? 200 : 1, testing::eventSpec("step"));
    chunks.push_back(testing::chunkOf({testing::messageSpec(7, std::move(events), i)}));
  }
  return buildLog(chunks);
}

// The offsets of each chunk's size prefix, and the end of the file.
std::vector<size_t> chunkOffsets(const std::vector<uint8_t>& log) {
  std::vector<size_t> offsets{0};
  while (offsets.back() + 4 <= log.size()) {
    const uint8_t* prefix = log.data() + offsets.back();
    offsets.push_back(offsets.back() + 4 +
                      (prefix[0] | prefix[1] << 8 | prefix[2] << 16 | uint32_t(prefix[3]) << 24));
  }
  return offsets;
}

TEST(ReadAhead, ReadsAsASerialReadDoes) {
  const std::vector<uint8_t> log = wholeLog();
  const std::vector<size_t> offset = chunkOffsets(log);
  ASSERT_EQ(offset.size(), chunkCount + 1);
  const auto corrupt = [&](size_t chunk) {
    std::vector<uint8_t> bytes = log;
    bytes[offset[chunk] + 4 + 8] ^= 0xFF; // inside its root table's vtable offset
    return bytes;
  };
  const auto cutAt = [&](size_t length) {
    return std::vector<uint8_t>(log.begin(), log.begin() + std::ptrdiff_t(length));
  };
  struct Case {
    const char* what;
    std::vector<uint8_t> bytes;
    bool completes = false;  // as whole chunks; a reader takes a cut chunk zero-padded
    size_t throwAtChunk = 0; // the caller's drain throws at this chunk, counted from 1
  };
  const Case cases[] = {
      {"whole log", log, true},
      {"first chunk corrupt", corrupt(0)},
      {"middle chunk corrupt", corrupt(chunkCount / 2)},
      {"last chunk corrupt", corrupt(chunkCount - 1)},
      {"two chunks corrupt",
       [&] {
         std::vector<uint8_t> bytes = corrupt(7);
         bytes[offset[9] + 4 + 8] ^= 0xFF;
         return bytes;
       }()},
      {"cut inside a size prefix", cutAt(offset[chunkCount / 2] + 2)},
      {"cut inside the last chunk", cutAt(log.size() - 3)},
      {"a size prefix beyond any buffer",
       [&] {
         std::vector<uint8_t> bytes = log;
         bytes[offset[5] + 3] = 0xFF;
         return bytes;
       }()},
      {"the caller gives up at the third chunk", log, false, 3},
  };
  const ReadAheadWindow windows[] = {{}, {1, 1}, {3, 4096}};
  for (const Case& c : cases) {
    const TempDir dir;
    const std::string path = dir.write("run.log", c.bytes);
    for (const bool wholeOnly : {false, true}) {
      SCOPED_TRACE(std::string(c.what) + (wholeOnly ? ", whole chunks only" : ""));
      const Seen serial = read(path, {.wholeChunksOnly = wholeOnly}, c.throwAtChunk);
      if (wholeOnly) {
        EXPECT_EQ(serial.fault == "complete", c.completes) << serial.fault;
      }
      for (const unsigned threads : {1u, 2u, 4u}) // one: no helper, the caller verifies
        for (const ReadAheadWindow& window : windows) {
          SCOPED_TRACE(std::to_string(threads) + " threads, window of " +
                       std::to_string(window.chunks) + " chunks");
          LogReadOptions options{.wholeChunksOnly = wholeOnly};
          options.openStream = [&](LogChunkReader& file, bool whole) {
            return std::make_unique<ReadAheadStream>(file, whole, threads - 1, window);
          };
          EXPECT_EQ(read(path, options, c.throwAtChunk), serial);
        }
    }
  }
}

// A setting the tools would refuse is never taken for a thread count.
TEST(ReadAhead, TakesItsThreadsFromTheEnvironment) {
  struct Case {
    const char* value;
    std::optional<unsigned> threads;
  };
  const Case cases[] = {
      {"", 1},
      {"1", 1},
      {"4", 4},
      {"256", 256},
      {"0", std::nullopt},
      {"257", std::nullopt},
      {"4x", std::nullopt},
      {"-2", std::nullopt},
      {" 4", std::nullopt},
      {"99999999999", std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
#if defined(_WIN32)
    _putenv_s("KVT_PROFILER_THREADS", c.value); // an empty value removes it
#else
    setenv("KVT_PROFILER_THREADS", c.value, 1);
#endif
    EXPECT_EQ(readThreadsSetting(), c.threads);
    if (!c.threads) {
      EXPECT_EQ(describeBadReadThreads(), "KVT_PROFILER_THREADS must be a whole number from 1 to "
                                          "256, not \"" +
                                              std::string(c.value) + "\"");
    }
  }
#if defined(_WIN32)
  _putenv_s("KVT_PROFILER_THREADS", "");
#else
  unsetenv("KVT_PROFILER_THREADS");
#endif
}

} // namespace
} // namespace kvt::profiling
