// What build reads and what it refuses: the frame of a dump document in its permitted forms, and
// JSON the schema parser rejects, with its message. A refused build leaves no file behind and an
// older log untouched. Every command refuses a missing input and an unwritable output alike.
#include "TextSearch.h"
#include "ToolRun.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kvt::profiling {
namespace {

using testing::countOf;
using testing::readFile;
using testing::runTool;
using testing::TempDir;
using testing::ToolRun;

TEST(LogBuild, ReadsDocumentFramesInEveryPermittedForm) {
  struct Case {
    const char* what;
    const char* document;
    size_t chunks;
  };
  const Case cases[] = {
      {"as dump prints it", R"({"chunks": [{"offset": 0, "log": {}}, {"size": 12, "log": {}}]})",
       2},
      {"bare keys and comments", "// a log\n{ chunks: /* } */ [ { log: {} } // ]\n ] }", 1},
      {"brackets and quotes inside strings",
       R"({"chunks": [{"log": {"header": {"net_run_version": "}]\"{["}}}]})", 1},
      {"comma after the last chunk", "{chunks: [{log: {}}, {log: {}},]}", 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const TempDir dir;
    const std::string log = (dir.path() / "built.log").string();
    const ToolRun build =
        runTool({"build", dir.write("in.json", std::string(c.document)), "-o", log});
    ASSERT_EQ(build.exitCode, 0) << build.err;
    const ToolRun dump = runTool({"dump", log});
    EXPECT_EQ(countOf(dump.out, "\"log\": "), c.chunks);
  }
}

TEST(LogBuild, RefusesBrokenInput) {
  struct Case {
    const char* what;
    bool chunkFile; // else a dump document
    const char* json;
    const char* report;
  };
  const Case cases[] = {
      {"cut-off chunk JSON", true, "{ messages: [ { stamp: {} ", "error"},
      {"misspelt field", true, "{ mesages: [] }", "unknown field: mesages"},
      {"document that is no object", false, "[]", "line 1: expected the document's \"{\""},
      {"chunks without a comma", false, "{\"chunks\": [\n{\"log\": {}}\n{\"log\": {}}]}",
       "line 3: expected \",\" or \"]\" after a chunk"},
      {"chunk without its log", false, "{\"chunks\": [{\"log\": {}}, \n{ \"offset\": 0 }]}",
       "chunk 1 (line 2): 1: 15: error: required field is missing: log"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const TempDir dir;
    const std::string input = dir.write("input.json", std::string(c.json));
    const std::string log = dir.write("existing.log", std::string("older log"));
    const ToolRun build = c.chunkFile ? runTool({"build", "--chunks", input, "-o", log})
                                      : runTool({"build", input, "-o", log});
    EXPECT_EQ(build.exitCode, 1);
    EXPECT_EQ(build.err.find("kvt-profile-log build: " + input), 0u) << build.err;
    EXPECT_NE(build.err.find(c.report), std::string::npos) << build.err;
    EXPECT_EQ(readFile(log), "older log");
    EXPECT_FALSE(std::filesystem::exists(log + ".partial"));
  }
}

// Every command's missing input and unwritable output: exit 1, a message naming the file, no file.
TEST(LogTool, MissingInputOrUnwritableOutputIsBadInput) {
  const TempDir dir;
  const std::string chunk = dir.write("chunk.json", std::string("{}"));
  const std::string missing = (dir.path() / "missing.json").string();
  const std::string log = (dir.path() / "new.log").string();
  const std::string unwritable = (dir.path() / "no-such-dir" / "new.log").string();
  struct Case {
    const char* what;
    std::vector<std::string> args;
    std::string report;
  };
  const Case cases[] = {
      {"build: missing document", {"build", missing, "-o", log}, missing + ": cannot read it"},
      {"build: directory of the output missing",
       {"build", "--chunks", chunk, "-o", unwritable},
       unwritable + ": cannot create it"},
      {"dump: missing log", {"dump", log}, "cannot read"},
      {"synth: directory of the output missing",
       {"synth", "-o", unwritable},
       "kvt-profile-log synth: cannot write " + unwritable + "\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ToolRun run = runTool(c.args);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find(c.report), std::string::npos) << run.err;
    EXPECT_FALSE(std::filesystem::exists(log));
    EXPECT_FALSE(std::filesystem::exists(unwritable));
  }
}

} // namespace
} // namespace kvt::profiling
