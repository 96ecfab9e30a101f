// Golden case folders, for the parameterised tests that run every case, and the comparison with
// expected files that KVT_UPDATE_GOLDEN=1 turns into rewriting them.
#pragma once

#include "TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace kvt::profiling::testing {

// The folder holding one folder per case, with its inputs and expected outputs.
inline const std::filesystem::path goldenCaseDir = KVT_TEST_DATA_DIR "/golden";

// The names of the case folders of root, sorted. A folder holding a file "not-on-windows" pins
// what Windows' C library does differently (the file says what); Windows builds leave it out.
inline std::vector<std::string> goldenCaseNames(const std::filesystem::path& root = goldenCaseDir) {
  std::vector<std::string> cases;
  for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(root)) {
#if defined(_WIN32)
    if (std::filesystem::exists(entry.path() / "not-on-windows"))
      continue;
#endif
    if (entry.is_directory())
      cases.push_back(entry.path().filename().string());
  }
  std::sort(cases.begin(), cases.end());
  return cases;
}

// A case name as a test name, which allows letters, digits and '_' only: "empty-log" ->
// "empty_log".
inline std::string goldenCaseTestName(const ::testing::TestParamInfo<std::string>& info) {
  std::string name = info.param;
  std::replace_if(
      name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); },
      '_');
  return name;
}

// Machine-specific paths in reports become placeholders, so the expected files hold none.
inline std::string withPlaceholders(std::string text, const std::string& path,
                                    const std::string& placeholder) {
  for (size_t at = text.find(path); !path.empty() && at != std::string::npos;
       at = text.find(path, at + placeholder.size()))
    text.replace(at, path.size(), placeholder);
  return text;
}

// Expects actual to equal the expected file; a file a program wrote in text mode (writtenInText)
// ends its lines as the platform does. With KVT_UPDATE_GOLDEN=1 in the environment the expected
// file is rewritten instead, for its diff to be reviewed.
inline void expectGoldenFile(const std::filesystem::path& expected, const std::string& actual,
                             bool writtenInText = false) {
  SCOPED_TRACE(expected.string());
  const char* update = std::getenv("KVT_UPDATE_GOLDEN");
  if (update && std::string(update) == "1") {
    std::ofstream(expected, std::ios::binary | std::ios::trunc) << actual;
    return;
  }
  ASSERT_TRUE(std::filesystem::exists(expected))
      << "missing; run with KVT_UPDATE_GOLDEN=1 and review the result";
  EXPECT_EQ(actual, writtenInText ? asWrittenInTextMode(readFile(expected)) : readFile(expected));
}

} // namespace kvt::profiling::testing
