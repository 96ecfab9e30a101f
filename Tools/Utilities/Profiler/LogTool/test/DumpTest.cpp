// What dump makes of logs it cannot read whole: the bad chunk is named by number and offset, the
// good chunks still make a complete document, and the exit status is 1.
#include "ToolRun.h"
#include "log/LogWriter.h"
#include "support/LogSpecs.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <functional>

namespace kvt::profiling {
namespace {

using testing::runTool;
using testing::TempDir;
using testing::ToolRun;

size_t countOf(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

struct FramedLog {
  std::vector<uint8_t> bytes;
  std::vector<size_t> chunkOffsets;
};

// Three chunks of one compose-graphs message each.
FramedLog threeChunkLog() {
  FramedLog log;
  for (uint64_t timestamp : {1000, 2000, 3000}) {
    const std::vector<uint8_t> framed =
        buildChunk(testing::chunkOf({testing::messageSpec(7, {}, timestamp)}));
    log.chunkOffsets.push_back(log.bytes.size());
    log.bytes.insert(log.bytes.end(), framed.begin(), framed.end());
  }
  return log;
}

void writeSizePrefix(std::vector<uint8_t>& bytes, size_t offset, uint32_t size) {
  for (int i = 0; i < 4; ++i)
    bytes[offset + size_t(i)] = uint8_t(size >> (8 * i));
}

TEST(LogDump, ReportsBadChunksAndKeepsTheGoodOnes) {
  const FramedLog intact = threeChunkLog();
  const std::string second = std::to_string(intact.chunkOffsets[1]);
  const std::string third = std::to_string(intact.chunkOffsets[2]);
  const size_t thirdBytes = intact.bytes.size() - intact.chunkOffsets[2] - 4;
  struct Case {
    const char* what;
    std::function<void(std::vector<uint8_t>&)> damage;
    int exitCode;
    std::string report;
    std::vector<const char*> timestampsDumped;
  };
  const Case cases[] = {
      {"intact", [](auto&) {}, 0, "", {"1000", "2000", "3000"}},
      {"root offset of the second chunk flipped",
       [&](auto& bytes) { bytes[intact.chunkOffsets[1] + 4 + 3] ^= 0x80; },
       1,
       "chunk 1 at offset " + second + " (" +
           std::to_string(intact.chunkOffsets[2] - intact.chunkOffsets[1] - 4) +
           " bytes) has a root offset outside its buffer",
       {"1000", "3000"}},
      {"root offset of the second chunk misaligned",
       [&](auto& bytes) { bytes[intact.chunkOffsets[1] + 4] ^= 0x01; },
       1,
       "chunk 1 at offset " + second + " (" +
           std::to_string(intact.chunkOffsets[2] - intact.chunkOffsets[1] - 4) +
           " bytes) fails verification",
       {"1000", "3000"}},
      {"last chunk cut short",
       [](auto& bytes) { bytes.erase(bytes.end() - 5, bytes.end()); },
       1,
       "chunk 2 at offset " + third + " is cut short: its size prefix says " +
           std::to_string(thirdBytes) + " bytes, the file holds " + std::to_string(thirdBytes - 5) +
           " more",
       {"1000", "2000"}},
      {"size prefix of a gigabyte",
       [&](auto& bytes) { writeSizePrefix(bytes, intact.chunkOffsets[2], 1u << 30); },
       1,
       "chunk 2 at offset " + third + " is cut short: its size prefix says 1073741824 bytes",
       {"1000", "2000"}},
      {"size prefix beyond any buffer",
       [&](auto& bytes) { writeSizePrefix(bytes, intact.chunkOffsets[2], 0xFFFFFFFFu); },
       1,
       "chunk 2 at offset " + third +
           " has a size prefix of 4294967295 bytes, beyond the largest buffer a chunk may hold",
       {"1000", "2000"}},
      {"two bytes after the last chunk",
       [](auto& bytes) {
         bytes.insert(bytes.end(), {0, 0});
       },
       1,
       "chunk 3 at offset " + std::to_string(intact.bytes.size()) +
           " is cut short: 2 bytes, too few for a size prefix",
       {"1000", "2000", "3000"}},
      {"empty file",
       [](auto& bytes) { bytes.clear(); },
       1,
       "is an empty file (0 bytes), not a log",
       {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::vector<uint8_t> bytes = intact.bytes;
    c.damage(bytes);
    const TempDir dir;
    const ToolRun dump = runTool({"dump", dir.write("damaged.log", bytes)});
    EXPECT_EQ(dump.exitCode, c.exitCode);
    if (c.report.empty())
      EXPECT_EQ(dump.err, "");
    else
      EXPECT_NE(dump.err.find(c.report), std::string::npos) << dump.err;
    EXPECT_EQ(countOf(dump.out, "\"offset\": "), c.timestampsDumped.size());
    for (const char* timestamp : c.timestampsDumped)
      EXPECT_NE(dump.out.find(std::string("\"timestamp\": ") + timestamp), std::string::npos);
    // The document is complete even after a bad chunk: it builds into a log again.
    const std::string rebuilt = (dir.path() / "rebuilt.log").string();
    EXPECT_EQ(runTool({"build", dir.write("dump.json", dump.out), "-o", rebuilt}).exitCode, 0);
  }
}

} // namespace
} // namespace kvt::profiling
