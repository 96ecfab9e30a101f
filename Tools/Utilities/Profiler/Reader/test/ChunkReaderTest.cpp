// Reading a log file chunk by chunk: framing, truncation, absurd sizes, unreadable paths.
#include "log/LogWriter.h"
#include "log/ParseDriver.h"
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/LogSpecs.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <fstream>

#if !defined(_WIN32)
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;
using testing::TempDir;

ChunkSpec composeChunk(uint64_t timestamp) {
  return testing::chunkOf({testing::messageSpec(7, {}, timestamp)});
}

// The stamps of every message the driver hands out, and whether it read the whole log.
struct Drained {
  bool complete = false;
  std::vector<uint64_t> stamps;
};

Drained drain(const std::string& path, const LogReadOptions& options = {}) {
  Drained result;
  FlatBufferReaderUtil streamReader;
  const auto takeStamps = [&] {
    while (const schema::Message* message = streamReader.nextMessage())
      result.stamps.push_back(message->stamp()->timestamp());
  };
  result.complete = readLogChunks(path, streamReader, takeStamps, options).complete();
  return result;
}

// A chunk of the log writer whose size prefix claims size bytes instead.
std::vector<uint8_t> withSizePrefix(uint32_t size, std::vector<uint8_t> chunk) {
  for (size_t i = 0; i < 4; ++i)
    chunk[i] = uint8_t(size >> (8 * i));
  return chunk;
}

std::vector<uint8_t> twoChunks() {
  const ChunkSpec chunks[] = {composeChunk(1), composeChunk(2)};
  return buildLog(chunks);
}

TEST(ChunkReader, ReadsFramedChunks) {
  struct Case {
    const char* what;
    std::vector<uint8_t> bytes;
    bool complete;
    std::vector<uint64_t> stamps;
    bool corrupt;
  };
  const std::vector<uint8_t> log = twoChunks();
  // A chunk's last bytes are its one message's stamp: this one's top byte ends the file.
  constexpr uint64_t topByteStamp = 0x0100000000000002u;
  const std::vector<uint8_t> stampLast =
      buildLog(std::vector{composeChunk(1), composeChunk(topByteStamp)});
  const size_t firstChunkBytes = buildChunk(composeChunk(1)).size();
  const std::vector<uint8_t> composeChunk3 = buildChunk(composeChunk(3));
  auto withTail = [&](std::vector<uint8_t> tail) {
    std::vector<uint8_t> bytes = log;
    bytes.insert(bytes.end(), tail.begin(), tail.end());
    return bytes;
  };
  const Case cases[] = {
      {"empty file", {}, true, {}, false},
      {"three bytes", {7, 0, 0}, true, {}, false},
      {"two chunks", log, true, {1, 2}, false},
      {"two chunks and three trailing bytes", withTail({1, 2, 3}), true, {1, 2}, false},
      {"a 4 GiB size prefix after the chunks",
       withTail(withSizePrefix(0xFFFFFFFF, composeChunk3)),
       false,
       {1, 2},
       true},
      {"a size prefix of the verifier's largest buffer over a valid chunk",
       withSizePrefix(ChunkLimits::maxBytes, composeChunk3),
       false,
       {},
       true},
      // A chunk cut short is zero-padded and verified as it stands: zeros may well verify.
      {"one byte less over zeros",
       withSizePrefix(ChunkLimits::maxBytes - 1, std::vector<uint8_t>(8, 0)),
       false,
       {},
       true},
      {"one byte less over a chunk without messages",
       withSizePrefix(ChunkLimits::maxBytes - 1, buildChunk(ChunkSpec{})),
       true,
       {},
       false},
      {"a zero size prefix", {0, 0, 0, 0}, false, {}, true},
      {"second chunk ending exactly at the end of the file",
       stampLast,
       true,
       {1, topByteStamp},
       false},
      {"second chunk one byte short, its stamp's top byte zero-padded",
       std::vector<uint8_t>(stampLast.begin(), stampLast.end() - 1),
       true,
       {1, topByteStamp & 0x00FFFFFFFFFFFFFFu},
       false},
      {"second chunk cut in its last field",
       std::vector<uint8_t>(log.begin(), log.end() - 9),
       true,
       {1, 0},
       false},
      {"second chunk corrupt",
       [&] {
         std::vector<uint8_t> bytes = log;
         bytes[firstChunkBytes + 4] = 0; // its root offset
         bytes[firstChunkBytes + 5] = 0;
         return bytes;
       }(),
       false,
       {1},
       true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    TempDir dir;
    CapturingLogger logger;
    const Drained drained = drain(dir.write("log.bin", c.bytes));
    EXPECT_EQ(drained.complete, c.complete);
    EXPECT_EQ(drained.stamps, c.stamps);
    EXPECT_EQ(logger.contains(logError, "Corrupted flatbuffer binary stream"), c.corrupt);
  }
}

#if !defined(_WIN32) // the address-space limit is POSIX's
// With the address space limited to 1 GiB more than is in use, a size prefix the verifier could
// never hold is still refused as corrupt, before anything is allocated; a chunk one byte smaller
// (zero-padded from the file's end) needs memory that cannot be had, unless whole chunks are
// asked for: then its claimed size is never reserved.
TEST(ChunkReader, ChunksBeyondTheAddressSpaceLeft) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizers reserve address space of their own";
#endif
  struct Case {
    const char* what;
    uint32_t sizePrefix;
    bool wholeChunksOnly;
    bool outOfMemory; // else corrupt
  };
  const Case cases[] = {
      {"the verifier's largest size", ChunkLimits::maxBytes, false, false},
      {"one byte less", ChunkLimits::maxBytes - 1, false, true},
      {"one byte less, whole chunks only", ChunkLimits::maxBytes - 1, true, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const TempDir dir;
    const std::string path =
        dir.write("log.bin", withSizePrefix(c.sizePrefix, buildChunk(composeChunk(1))));
    size_t pagesInUse = 0;
    std::ifstream("/proc/self/statm") >> pagesInUse;
    rlimit previous{};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &previous), 0);
    rlimit limited = previous;
    limited.rlim_cur = pagesInUse * size_t(sysconf(_SC_PAGESIZE)) + (size_t(1) << 30);
    if (pagesInUse == 0 || limited.rlim_cur > previous.rlim_max)
      GTEST_SKIP() << "cannot limit the address space";
    CapturingLogger logger;
    ASSERT_EQ(setrlimit(RLIMIT_AS, &limited), 0);
    // A user-mode emulator accepts the limit and holds to none.
    void* probe = mmap(nullptr, ChunkLimits::maxBytes, PROT_READ,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    const bool limitHolds = probe == MAP_FAILED;
    const bool complete =
        limitHolds && drain(path, {.wholeChunksOnly = c.wholeChunksOnly}).complete;
    setrlimit(RLIMIT_AS, &previous);
    if (!limitHolds) {
      munmap(probe, ChunkLimits::maxBytes);
      GTEST_SKIP() << "the address-space limit does not hold here";
    }
    EXPECT_FALSE(complete);
    EXPECT_EQ(logger.texts(logError),
              std::vector<std::string>{c.outOfMemory ? "Out of memory for a chunk of " + path
                                                     : "Corrupted flatbuffer binary stream"});
  }
}
#endif

TEST(ChunkReader, RefusesWhatIsNoReadableFile) {
  TempDir dir;
  struct Case {
    const char* what;
    std::string path;
  };
  const Case cases[] = {
      {"missing file", (dir.path() / "missing.log").string()},
      {"directory", dir.path().string()},
      {"empty path", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CapturingLogger logger;
    EXPECT_FALSE(drain(c.path).complete);
    EXPECT_EQ(logger.texts(logError),
              std::vector<std::string>{"Invalid or nonexistent file: " + c.path});
  }
}

} // namespace
} // namespace kvt::profiling
