// What build refuses: JSON the schema parser rejects, with its message, and files it cannot
// read. A refused build leaves no file behind and an older log untouched.
#include "ToolRun.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kvt::profiling {
namespace {

using testing::readFile;
using testing::runTool;
using testing::TempDir;
using testing::ToolRun;

TEST(LogBuild, RefusesInputTheParserRejects) {
  struct Case {
    const char* what;
    bool chunkFile;
    const char* json;
    const char* report;
  };
  const Case cases[] = {
      {"cut-off JSON", true, "{ messages: [ { stamp: {} ", "error"},
      {"misspelt field", true, "{ mesages: [] }", "unknown field: mesages"},
      {"message without its stamp", true, "{ messages: [ { timing: {} } ] }",
       "required field is missing: stamp"},
      {"value out of range", true, "{ messages: [ { stamp: {}, timing: {}, method_type: 300 } ] }",
       "constant does not fit"},
      {"document chunk without its log", false, R"({ "chunks": [ { "offset": 0 } ] })",
       "required field is missing: log"},
      {"chunk file given as a document", false, "{ messages: [] }", "unknown field: messages"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const TempDir dir;
    const std::string input = dir.write("input.json", std::string(c.json));
    const std::string log = dir.write("existing.log", std::string("older log"));
    const ToolRun build = c.chunkFile ? runTool({"build", "--chunks", input, "-o", log})
                                      : runTool({"build", input, "-o", log});
    EXPECT_EQ(build.exitCode, 1);
    EXPECT_NE(build.err.find(input), std::string::npos) << build.err;
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

  const ToolRun unreadable = runTool({"build", "--chunks", chunk, missing, "-o", log});
  EXPECT_EQ(unreadable.exitCode, 1);
  EXPECT_NE(unreadable.err.find(missing + ": cannot read it"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(log));

  const ToolRun uncreatable = runTool({"build", "--chunks", chunk, "-o", unwritable});
  EXPECT_EQ(uncreatable.exitCode, 1);
  EXPECT_NE(uncreatable.err.find(unwritable + ": cannot create it"), std::string::npos);
}

} // namespace
} // namespace kvt::profiling
