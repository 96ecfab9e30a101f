// The case folders of test/golden, for the parameterised tests that run every case, and the
// switch that rewrites expected files.
#pragma once

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

// The names of the case folders, sorted. A folder holding a file "not-on-windows" pins what
// Windows' C library does differently (the file says what); Windows builds leave it out.
inline std::vector<std::string> goldenCaseNames() {
  std::vector<std::string> cases;
  for (const std::filesystem::directory_entry& entry :
       std::filesystem::directory_iterator(goldenCaseDir)) {
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

// True when KVT_UPDATE_GOLDEN=1 asks the tests to rewrite their expected files instead.
inline bool updatingGolden() {
  const char* update = std::getenv("KVT_UPDATE_GOLDEN");
  return update && std::string(update) == "1";
}

} // namespace kvt::profiling::testing
