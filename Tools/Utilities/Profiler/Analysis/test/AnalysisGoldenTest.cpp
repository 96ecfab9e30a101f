// Runs the commands of every case folder of golden/ through the log tool, on the logs built from
// the folder's JSON, and compares what they print byte for byte with the expected files beside
// them. KVT_UPDATE_GOLDEN=1 rewrites the expected files instead; review their diff.
#include "RunToolCommand.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace kvt::profiling {
namespace {

namespace fs = std::filesystem;

const fs::path caseRoot = KVT_ANALYSIS_GOLDEN_DIR;
const fs::path logRoot = KVT_ANALYSIS_LOG_DIR;

std::string readText(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// The machine's log folder as a placeholder, so the expected files hold no machine's paths.
std::string withPlaceholder(std::string text) {
  const std::string dir = logRoot.string();
  for (size_t at = text.find(dir); at != std::string::npos; at = text.find(dir, at))
    text.replace(at, dir.size(), "<logs>");
  return text;
}

// The arguments of a command line, {NAME} replaced by the path of the case's NAME.log.
std::vector<std::string> readArguments(const std::string& line, const std::string& caseName) {
  std::vector<std::string> arguments;
  std::istringstream words(line);
  for (std::string word; words >> word;) {
    if (word.size() > 2 && word.front() == '{' && word.back() == '}')
      word = (logRoot / caseName / (word.substr(1, word.size() - 2) + ".log")).string();
    arguments.push_back(word);
  }
  return arguments;
}

void compareOrUpdate(const fs::path& expectedPath, const std::string& actual) {
  SCOPED_TRACE(expectedPath.filename().string());
  const char* update = std::getenv("KVT_UPDATE_GOLDEN");
  if (update && std::string(update) == "1") {
    std::ofstream(expectedPath, std::ios::binary | std::ios::trunc) << actual;
    return;
  }
  ASSERT_TRUE(fs::exists(expectedPath))
      << expectedPath << " is missing; run with KVT_UPDATE_GOLDEN=1 and review the result";
  EXPECT_EQ(actual, readText(expectedPath));
}

class AnalysisGolden : public ::testing::TestWithParam<std::string> {};

TEST_P(AnalysisGolden, PrintsExpectedReports) {
  const fs::path caseDir = caseRoot / GetParam();
  std::istringstream commands(readText(caseDir / "commands"));
  std::string results;
  for (std::string line; std::getline(commands, line);) {
    const size_t colon = line.find(':');
    ASSERT_NE(colon, std::string::npos) << "no 'OUTPUT: ARGS' in " << line;
    const std::string output = line.substr(0, colon);
    const std::vector<std::string> arguments = readArguments(line.substr(colon + 1), GetParam());
    std::ostringstream out;
    std::ostringstream err;
    ToolConsole console{out, err, false};
    const int exitCode = runToolCommand(arguments, console);
    compareOrUpdate(caseDir / (output + ".out"), withPlaceholder(out.str()));
    results += output + ": exit " + std::to_string(exitCode) + "\n" + withPlaceholder(err.str());
  }
  compareOrUpdate(caseDir / "results", results);
}

std::vector<std::string> caseNames() {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(caseRoot))
    if (entry.is_directory())
      names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

INSTANTIATE_TEST_SUITE_P(Cases, AnalysisGolden, ::testing::ValuesIn(caseNames()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                           std::string name = info.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

} // namespace
} // namespace kvt::profiling
