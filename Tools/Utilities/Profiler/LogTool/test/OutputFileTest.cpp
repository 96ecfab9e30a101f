// Every command that writes a file writes it one way: whole or not at all, through links, in
// place on devices, with the system's reason when it cannot. Regression: the report replaced a
// symbolic link with a regular file and said only "cannot write"; -o /dev/null once turned the
// device into an ordinary file.
#include "ToolRun.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

#if !defined(_WIN32)
#include <unistd.h>
#endif

namespace kvt::profiling {
namespace {

namespace fs = std::filesystem;
using testing::readFile;
using testing::runTool;
using testing::TempDir;
using testing::ToolRun;

const std::string stepKeysLog = std::string(KVT_TOOL_LOG_DIR) + "/step-keys/input.log";

// The commands that write a file, each with -o and the path to write.
std::vector<std::vector<std::string>> writingCommands(const std::string& output) {
  return {{"build", KVT_EXAMPLE_JSON, "-o", output},
          {"synth", "-o", output, "--graphs", "1", "--executions", "2", "--steps", "1"},
          {"report", stepKeysLog, "-o", output},
          {"executions", stepKeysLog, "-o", output},
          {"stats", stepKeysLog, "-o", output},
          {"compare", stepKeysLog, stepKeysLog, "-o", output}};
}

TEST(OutputFile, EveryCommandWritesOneWay) {
  struct Case {
    const char* what;
    // Makes what the command writes to inside dir; returns the path given to -o.
    std::function<std::string(const fs::path& dir)> prepare;
    const char* reason; // on the standard error when it fails; null: success
    std::function<void(const fs::path& dir)> check; // after the command
    bool needsNonRoot = false;
  };
  // A second name of the older file keeps its bytes: the new file was renamed over the name,
  // not written into the older one.
  auto keepOlder = [](const fs::path& older) {
    std::ofstream(older) << "old";
    fs::create_hard_link(older, older.parent_path() / "older-bytes");
  };
  auto fileIsNew = [](const fs::path& file) {
    EXPECT_TRUE(fs::is_regular_file(file));
    EXPECT_NE(readFile(file), "old");
    EXPECT_FALSE(readFile(file).empty());
    if (fs::exists(file.parent_path() / "older-bytes")) {
      EXPECT_EQ(readFile(file.parent_path() / "older-bytes"), "old");
    }
  };
  const Case cases[] = {
    {"a new file", [](const fs::path& dir) { return (dir / "out").string(); }, nullptr,
     [&](const fs::path& dir) { fileIsNew(dir / "out"); }},
    {"an older file replaced",
     [&](const fs::path& dir) {
       keepOlder(dir / "out");
       return (dir / "out").string();
     },
     nullptr, [&](const fs::path& dir) { fileIsNew(dir / "out"); }},
    {"through a symbolic link, which stays",
     [&](const fs::path& dir) {
       keepOlder(dir / "target");
       fs::create_symlink(dir / "target", dir / "link");
       return (dir / "link").string();
     },
     nullptr,
     [&](const fs::path& dir) {
       EXPECT_TRUE(fs::is_symlink(dir / "link"));
       fileIsNew(dir / "target");
     }},
    {"through a dangling link, relative",
     [](const fs::path& dir) {
       fs::create_symlink("target", dir / "link");
       return (dir / "link").string();
     },
     nullptr,
     [&](const fs::path& dir) {
       EXPECT_TRUE(fs::is_symlink(dir / "link"));
       fileIsNew(dir / "target");
     }},
#if !defined(_WIN32)
    {"a device, in place", [](const fs::path&) { return std::string("/dev/null"); }, nullptr,
     [](const fs::path&) { EXPECT_TRUE(fs::is_character_file("/dev/null")); }},
    {"a full device", [](const fs::path&) { return std::string("/dev/full"); },
     "No space left on device",
     [](const fs::path&) { EXPECT_TRUE(fs::is_character_file("/dev/full")); }},
    {"a folder without permission",
     [](const fs::path& dir) {
       fs::create_directory(dir / "locked");
       fs::permissions(dir / "locked", fs::perms::owner_read | fs::perms::owner_exec);
       return (dir / "locked" / "out").string();
     },
     "Permission denied",
     [](const fs::path& dir) {
       EXPECT_TRUE(fs::is_empty(dir / "locked"));
       fs::permissions(dir / "locked", fs::perms::owner_all);
     },
     true},
#endif
    {"a missing folder", [](const fs::path& dir) { return (dir / "missing" / "out").string(); },
     "No such file or directory",
     [](const fs::path& dir) { EXPECT_FALSE(fs::exists(dir / "missing")); }},
  };
#if !defined(_WIN32)
  const bool isRoot = geteuid() == 0;
#else
  const bool isRoot = false;
#endif
  for (const Case& c : cases) {
    if (c.needsNonRoot && isRoot)
      continue; // permissions do not hold for root
    for (size_t command = 0; command < writingCommands("").size(); ++command) {
      const TempDir dir;
      const std::vector<std::string> args = writingCommands(c.prepare(dir.path()))[command];
      SCOPED_TRACE(std::string(c.what) + ": " + args.front());
      const ToolRun run = runTool(args);
      if (c.reason) {
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_NE(run.err.find(std::string(": ") + c.reason + "\n"), std::string::npos) << run.err;
      } else {
        EXPECT_EQ(run.exitCode, 0) << run.err;
      }
      c.check(dir.path());
      for (const fs::directory_entry& entry : fs::recursive_directory_iterator(
               dir.path(), fs::directory_options::skip_permission_denied))
        EXPECT_NE(entry.path().extension(), ".partial") << entry.path();
    }
  }
}

} // namespace
} // namespace kvt::profiling
