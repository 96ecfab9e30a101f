// Temporary files and directories for tests, removed when the test ends.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace kvt::profiling::testing {

// A fresh directory under the system's temporary directory, removed with its contents.
class TempDir {
public:
  TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  ~TempDir();

  const std::filesystem::path& path() const { return root; }
  // Writes bytes to name inside the directory and returns the file's path.
  std::string write(const std::string& name, std::span<const uint8_t> bytes) const;
  std::string write(const std::string& name, const std::string& text) const;

private:
  std::filesystem::path root;
};

// The whole content of a file; empty when it cannot be read.
std::string readFile(const std::filesystem::path& path);

// Text as a program writes it to a file or standard stream opened in text mode: Windows ends
// the lines with CRLF, elsewhere the text stays as it is. Expected files hold LF line ends.
std::string asWrittenInTextMode(std::string text);

// Where the fixture logs compiled from test/fixtures/NAME.json lie: NAME.log.
std::string fixtureLog(const std::string& name);

// Every log compiled from test/fixtures and test/golden, sorted.
std::vector<std::string> fixtureAndGoldenLogs();

} // namespace kvt::profiling::testing
