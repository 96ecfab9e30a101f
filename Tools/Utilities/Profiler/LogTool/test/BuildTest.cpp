// What build reads and what it refuses: the frame of a dump document in its permitted forms, and
// JSON the schema parser rejects, with its message. A refused build leaves no file behind and an
// older log untouched.
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
      {"no chunks", R"({"chunks": []})", 0},
      {"bare keys and comments", "// a log\n{ chunks: /* } */ [ { log: {} } // ]\n ] }", 1},
      {"brackets and quotes inside strings",
       R"({"chunks": [{"log": {"header": {"net_run_version": "}]\"{["}}}]})", 1},
      {"comment that opens with a slash after the star", "{chunks: [{log: {} /*/ } */ }]}", 1},
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
      {"message without its stamp", true, "{ messages: [ { timing: {} } ] }",
       "required field is missing: stamp"},
      {"value out of range", true, "{ messages: [ { stamp: {}, timing: {}, method_type: 300 } ] }",
       "constant does not fit"},
      {"document that is no object", false, "[]", "line 1: expected the document's \"{\""},
      {"chunk file given as a document", false, "{ messages: [] }",
       "line 1: expected the key \"chunks\", not \"messages\""},
      {"document without the chunks' list", false, "{ \"chunks\": {} }",
       "line 1: expected the \"[\" of the chunks"},
      {"chunk that is no object", false, "{ \"chunks\": [ 1 ] }",
       "line 1: expected a chunk's \"{\" or the \"]\" that ends the chunks"},
      {"chunks without a comma", false, "{\"chunks\": [\n{\"log\": {}}\n{\"log\": {}}]}",
       "line 3: expected \",\" or \"]\" after a chunk"},
      {"chunk that does not end", false, "{\"chunks\": [\n\n{\"log\": {\"header\": {}}",
       "line 3: a chunk that does not end"},
      {"text after the document", false, "{\"chunks\": []}\n}", "line 2: text after the end"},
      {"chunk without its log", false, "{\"chunks\": [{\"log\": {}}, \n{ \"offset\": 0 }]}",
       "chunk 1 (line 2): 1: 15: error: required field is missing: log"},
      {"chunk with a misspelt field", false,
       "{\"chunks\": [{ \"log\": { \"header\": { t: 1 } } }]}",
       "chunk 0 (line 1): 1: 27: error: unknown field: t"},
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

TEST(LogBuild, MissingInputOrUnwritableOutputIsBadInput) {
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
      {"missing chunk file",
       {"build", "--chunks", chunk, missing, "-o", log},
       missing + ": cannot read it"},
      {"missing document", {"build", missing, "-o", log}, missing + ": cannot read it"},
      {"directory of the output missing",
       {"build", "--chunks", chunk, "-o", unwritable},
       unwritable + ": cannot create it"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ToolRun build = runTool(c.args);
    EXPECT_EQ(build.exitCode, 1);
    EXPECT_NE(build.err.find(c.report), std::string::npos) << build.err;
    EXPECT_FALSE(std::filesystem::exists(log));
  }
}

} // namespace
} // namespace kvt::profiling
