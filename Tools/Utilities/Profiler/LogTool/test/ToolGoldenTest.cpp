// Runs the commands of every case folder of golden/ through the log tool, on the logs built from
// the folder's JSON, and compares what they print byte for byte with the expected files beside
// them. KVT_UPDATE_GOLDEN=1 rewrites the expected files instead; review their diff.
#include "commands/RunToolCommand.h"
#include "support/GoldenCases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <sstream>

namespace kvt::profiling {
namespace {

namespace fs = std::filesystem;

const fs::path caseRoot = KVT_TOOL_GOLDEN_DIR;
const fs::path logRoot = KVT_TOOL_LOG_DIR;

// A copy of the file at path in folder, changed as edit says: "cut=N" keeps its first N bytes,
// "set=OFFSET:VALUE" sets the byte at OFFSET. The logs a crash or a bad disk leaves, made from
// readable ones.
std::string writeEditedCopy(const testing::TempDir& folder, const fs::path& path,
                            const std::string& edit) {
  std::string bytes = testing::readFile(path);
  unsigned long long offset = 0;
  unsigned value = 0;
  if (std::sscanf(edit.c_str(), "cut=%llu", &offset) == 1)
    bytes.resize(std::min<size_t>(bytes.size(), offset));
  else if (std::sscanf(edit.c_str(), "set=%llu:%u", &offset, &value) == 2 && offset < bytes.size())
    bytes[offset] = char(value);
  else
    ADD_FAILURE() << "no edit cut=N or set=OFFSET:VALUE: " << edit;
  std::string name = path.stem().string() + '-' + edit + path.extension().string();
  std::replace_if(
      name.begin(), name.end(), [](char c) { return c == '=' || c == ':'; }, '-');
  return folder.write(name, bytes);
}

// Where a case's commands read and write. In a command line {NAME} stands for the case's log
// NAME.log, built from its NAME.json; [PATH] for the file PATH of the case's folder; <out> for a
// fresh folder that also keeps each command's standard output as OUTPUT.out for later commands.
// Any of them followed by %EDIT stands for an edited copy of that file (see writeEditedCopy).
struct CasePlaces {
  fs::path caseDir;
  fs::path logDir;
  testing::TempDir outDir;

  std::vector<std::string> arguments(const std::string& line) const {
    std::vector<std::string> words;
    std::istringstream text(line);
    for (std::string word; text >> word;) {
      size_t editAt = word.find("%cut=");
      editAt = editAt == std::string::npos ? word.find("%set=") : editAt;
      const std::string edit = editAt == std::string::npos ? "" : word.substr(editAt + 1);
      word = word.substr(0, editAt);
      const std::string inner = word.size() > 2 ? word.substr(1, word.size() - 2) : "";
      if (word.front() == '{' && word.back() == '}')
        word = (logDir / (inner + ".log")).string();
      else if (word.front() == '[' && word.back() == ']')
        word = (caseDir / inner).string();
      else if (word.starts_with("<out>"))
        word = outDir.path().string() + word.substr(5);
      words.push_back(edit.empty() ? word : writeEditedCopy(outDir, word, edit));
    }
    return words;
  }

  // Printed text without the machine's paths.
  std::string placeheld(const std::string& text) const {
    std::string result = testing::withPlaceholders(text, logDir.string(), "<logs>");
    result = testing::withPlaceholders(result, caseDir.string(), "<case>");
    return testing::withPlaceholders(result, outDir.path().string(), "<out>");
  }
};

class ToolGolden : public ::testing::TestWithParam<std::string> {};

TEST_P(ToolGolden, PrintsExpectedReports) {
  const CasePlaces places{caseRoot / GetParam(), logRoot / GetParam(), {}};
  std::istringstream commands(testing::readFile(places.caseDir / "commands"));
  std::string results;
  for (std::string line; std::getline(commands, line);) {
    const size_t colon = line.find(':');
    ASSERT_NE(colon, std::string::npos) << "no 'OUTPUT: ARGS' in " << line;
    const std::string output = line.substr(0, colon);
    std::ostringstream out;
    std::ostringstream err;
    ToolConsole console{out, err, false};
    const int exitCode = runToolCommand(places.arguments(line.substr(colon + 1)), console);
    places.outDir.write(output + ".out", out.str());
    testing::expectGoldenFile(places.caseDir / (output + ".out"), places.placeheld(out.str()));
    results += output + ": exit " + std::to_string(exitCode) + "\n" + places.placeheld(err.str());
  }
  testing::expectGoldenFile(places.caseDir / "results", results);
}

INSTANTIATE_TEST_SUITE_P(Cases, ToolGolden, ::testing::ValuesIn(testing::goldenCaseNames(caseRoot)),
                         testing::goldenCaseTestName);

} // namespace
} // namespace kvt::profiling
