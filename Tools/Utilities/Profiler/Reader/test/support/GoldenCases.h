// The case folders of test/golden, for the parameterised tests that run every case, and the
// switch that rewrites expected files.
#pragma once

#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace kvt::profiling::testing {

// The folder holding one folder per case, with its inputs and expected outputs.
inline const std::filesystem::path goldenCaseDir = KVT_TEST_DATA_DIR "/golden";

// The names of the case folders, sorted.
inline std::vector<std::string> goldenCaseNames() {
  std::vector<std::string> cases;
  for (const std::filesystem::directory_entry& entry :
       std::filesystem::directory_iterator(goldenCaseDir))
    if (entry.is_directory())
      cases.push_back(entry.path().filename().string());
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

// True when KVT_UPDATE_GOLDEN=1 asks the tests to rewrite their expected files instead.
inline bool updatingGolden() {
  const char* update = std::getenv("KVT_UPDATE_GOLDEN");
  return update && std::string(update) == "1";
}

// An expected text file's content as a program writes it in text mode here: Windows ends the
// lines of text files and of the standard streams with CRLF, so the LF files hold for both.
inline std::string expectedTextFile(const std::filesystem::path& path) {
  std::string text = readFile(path);
#if defined(_WIN32)
  for (size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2))
    text.insert(at, 1, '\r');
#endif
  return text;
}

} // namespace kvt::profiling::testing
