// Logs survive a dump and a build byte for byte: synthesised logs of several shapes, the reader's
// fixture and golden logs, fields written with their defaults, and strings that are no text.
#include "TextSearch.h"
#include "ToolRun.h"
#include "log/LogWriter.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace kvt::profiling {
namespace {

using testing::countOf;
using testing::readFile;
using testing::runTool;
using testing::TempDir;
using testing::ToolRun;

// The dump document of log; a failed dump fails the test.
std::string dumpOf(const std::string& log) {
  const ToolRun dump = runTool({"dump", log});
  EXPECT_EQ(dump.exitCode, 0) << dump.err;
  return dump.out;
}

// The bytes of the log built from document.
std::string buildOf(const TempDir& dir, const std::string& document) {
  const std::string rebuilt = (dir.path() / "rebuilt.log").string();
  const ToolRun build = runTool({"build", dir.write("dump.json", document), "-o", rebuilt});
  EXPECT_EQ(build.exitCode, 0) << build.err;
  return readFile(rebuilt);
}

TEST(LogRoundTrip, SynthesisedLogsComeBackIdentical) {
  struct Case {
    const char* what;
    std::vector<std::string> options;
    size_t chunks; // the run has 6 + G + G * E messages
  };
  const Case cases[] = {
      {"linting detail, several chunks",
       {"--graphs", "2", "--executions", "3", "--steps", "4", "--messages-per-chunk", "4"},
       4},
      {"queue wait, one message per chunk",
       {"--graphs", "1", "--executions", "2", "--steps", "2", "--messages-per-chunk", "1",
        "--queue-wait"},
       9},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const TempDir dir;
    const std::string log = (dir.path() / "synth.log").string();
    std::vector<std::string> args = {"synth", "-o", log};
    args.insert(args.end(), c.options.begin(), c.options.end());
    const ToolRun synth = runTool(args);
    ASSERT_EQ(synth.exitCode, 0) << synth.err;

    const std::string document = dumpOf(log);
    EXPECT_EQ(countOf(document, "\"offset\": "), c.chunks);
    const std::string original = readFile(log);
    EXPECT_TRUE(buildOf(dir, document) == original);
  }
}

TEST(LogRoundTrip, ReaderTestLogsComeBackIdentical) {
  const std::vector<std::string> logs = testing::fixtureAndGoldenLogs();
  ASSERT_FALSE(logs.empty());
  for (const std::string& log : logs) {
    SCOPED_TRACE(log);
    const TempDir dir;
    EXPECT_TRUE(buildOf(dir, dumpOf(log)) == readFile(log));
  }
}

TEST(LogRoundTrip, FieldsNamedWithTheirDefaultsAreKept) {
  const TempDir dir;
  const std::string chunk = dir.write(
      "defaults.json",
      "{ messages: [ { stamp: { timestamp: 0 }, method_type: 0, timing: { end: 0 } } ] }");
  const std::string log = (dir.path() / "defaults.log").string();
  ASSERT_EQ(runTool({"build", "--chunks", chunk, "-o", log}).exitCode, 0);
  const std::string document = dumpOf(log);
  EXPECT_NE(document.find("\"timestamp\": 0"), std::string::npos);
  EXPECT_NE(document.find("\"method_type\": 0"), std::string::npos);
  EXPECT_NE(document.find("\"end\": 0"), std::string::npos);
  EXPECT_EQ(document.find("\"start\""), std::string::npos);
  EXPECT_EQ(document.find("\"visibility\""), std::string::npos);
}

TEST(LogRoundTrip, StringsThatAreNoPlainTextSurvive) {
  // Bytes that are no UTF-8 leave the JSON escaped and come back unchanged.
  MessageSpec message;
  message.methodType = 1;
  message.graphName = "caf\xc3\xa9 \x01 \xff\xfe end";
  EventSpec event;
  event.identifier = std::string("nul \0 inside", 12);
  message.events = std::vector<EventSpec>{event};
  ChunkSpec chunk;
  chunk.messages = std::vector<MessageSpec>{message};
  const TempDir dir;
  const std::string log = dir.write("strings.log", buildLog(std::vector<ChunkSpec>{chunk}));

  const std::string document = dumpOf(log);
  EXPECT_NE(document.find(R"("caf\u00E9 \u0001 \xFF\xFE end")"), std::string::npos) << document;
  EXPECT_NE(document.find(R"("nul \u0000 inside")"), std::string::npos) << document;
  const std::string rebuilt = dir.write("rebuilt-strings.log", buildOf(dir, document));
  EXPECT_EQ(dumpOf(rebuilt), document);
}

} // namespace
} // namespace kvt::profiling
