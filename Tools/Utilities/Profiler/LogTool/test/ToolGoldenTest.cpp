// Runs the commands of every case folder of golden/ through the log tool, on the logs built from
// the folder's JSON, and compares what they print byte for byte with the expected files beside
// them. KVT_UPDATE_GOLDEN=1 rewrites the expected files instead; review their diff.
#include "RunToolCommand.h"
#include "support/GoldenCases.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace kvt::profiling {
namespace {

namespace fs = std::filesystem;

const fs::path caseRoot = KVT_TOOL_GOLDEN_DIR;
const fs::path logRoot = KVT_TOOL_LOG_DIR;

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

class ToolGolden : public ::testing::TestWithParam<std::string> {};

TEST_P(ToolGolden, PrintsExpectedReports) {
  const fs::path caseDir = caseRoot / GetParam();
  std::istringstream commands(testing::readFile(caseDir / "commands"));
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
    testing::expectGoldenFile(caseDir / (output + ".out"),
                              testing::withPlaceholders(out.str(), logRoot.string(), "<logs>"));
    results += output + ": exit " + std::to_string(exitCode) + "\n" +
               testing::withPlaceholders(err.str(), logRoot.string(), "<logs>");
  }
  testing::expectGoldenFile(caseDir / "results", results);
}

INSTANTIATE_TEST_SUITE_P(Cases, ToolGolden,
                         ::testing::ValuesIn(testing::goldenCaseNames(caseRoot)),
                         testing::goldenCaseTestName);

} // namespace
} // namespace kvt::profiling
