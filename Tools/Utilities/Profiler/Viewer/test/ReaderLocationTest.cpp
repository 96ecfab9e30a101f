// Finding the reader library for a --reader choice in the build-tree and installed layouts.
#include "ReaderLocation.h"

#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

namespace kvt::profiling {
namespace {

using testing::TempDir;

TEST(ReaderLocation, FindsNamedReadersNextToTheProgramThenInstalled) {
  struct Case {
    const char* what;
    const char* choice;
    std::vector<const char*> present; // "bin" and/or "installed"
    const char* found;                // "bin", "installed" or "" for none
  };
  const Case cases[] = {
      {"next to the program", "csv", {"bin"}, "bin"},
      {"installed layout", "csv", {"installed"}, "installed"},
      {"next to the program first", "chrometrace", {"installed", "bin"}, "bin"},
      {"installed trace reader", "chrometrace", {"installed"}, "installed"},
      {"nowhere", "csv", {}, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const TempDir root;
    const std::filesystem::path bin = root.path() / "bin";
    const std::filesystem::path installed = (bin / KVT_INSTALLED_READER_DIR).lexically_normal();
    const std::string fileName =
        std::string(c.choice) == "csv" ? KVT_CSV_READER_FILE : KVT_CHROMETRACE_READER_FILE;
    for (const std::string place : c.present) {
      const std::filesystem::path dir = place == "bin" ? bin : installed;
      std::filesystem::create_directories(dir);
      std::ofstream(dir / fileName).put('\0');
    }
    std::filesystem::create_directories(bin);

    std::string error;
    const std::optional<std::filesystem::path> path = findReaderLibrary(c.choice, bin, error);
    if (std::string(c.found).empty()) {
      EXPECT_FALSE(path);
      EXPECT_EQ(error, "cannot find the " + std::string(c.choice) + " reader: no " + fileName +
                           " in " + bin.string() + " or " + installed.string());
    } else {
      ASSERT_TRUE(path);
      EXPECT_EQ(*path, (std::string(c.found) == "bin" ? bin : installed) / fileName);
    }
  }
}

TEST(ReaderLocation, TakesAnyOtherChoiceAsAPathFromTheWorkingDirectory) {
  const std::filesystem::path here = std::filesystem::current_path();
  struct Case {
    const char* what;
    std::string choice;
    std::filesystem::path expected; // empty when refused
  };
  // Absolute on every platform: Windows' paths start with the drive.
  const std::filesystem::path elsewhere = here.root_path() / "opt" / "readers" / "libR.so";
  const Case cases[] = {
      {"relative path", "readers/libR.so", here / "readers/libR.so"},
      {"dot folders dropped", "./readers/../libR.so", here / "libR.so"},
      {"absolute path", elsewhere.string(), elsewhere},
      {"names are case-sensitive", "CSV", here / "CSV"},
      {"empty path", "", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::string error;
    const std::optional<std::filesystem::path> path =
        findReaderLibrary(c.choice, "/nonexistent/bin", error);
    EXPECT_EQ(path.value_or(""), c.expected);
    EXPECT_EQ(error.empty(), !c.expected.empty()) << error;
  }
}

TEST(ReaderLocation, KnowsTheRunningProgram) {
  EXPECT_EQ(executablePath().stem(), "KvtViewerTests");
}

} // namespace
} // namespace kvt::profiling
