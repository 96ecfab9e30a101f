// Expanding and printing the reader library's reports.
#include "StderrLogger.h"

#include <array>
#include <cstdio>

namespace kvt::profiling {

namespace {

constexpr std::string_view programName = "kvt-profile-viewer";

constexpr std::array<std::string_view, 5> levelNames{"error", "warning", "info", "debug",
                                                     "verbose"};

} // namespace

void printDiagnostic(std::string_view text) {
  std::string line;
  line.reserve(programName.size() + text.size() + 3);
  line.append(programName).append(": ").append(text).push_back('\n');
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void logToStderr(const char* format, uint32_t level, uint64_t /*timestampNs*/, va_list arguments) {
  printDiagnostic(formatReport(level, expandFormat(format, arguments)));
}

std::string expandFormat(const char* format, va_list arguments) {
  // The first pass only measures, so the second writes the whole text.
  va_list measuring;
  va_copy(measuring, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measuring);
  va_end(measuring);
  if (length <= 0)
    return {};
  std::string text(size_t(length), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  return text;
}

std::string formatReport(uint32_t level, std::string_view text) {
  if (text.ends_with('\n'))
    text.remove_suffix(1);
  const std::string name = level >= 1 && level <= levelNames.size()
                               ? std::string(levelNames[level - 1])
                               : "level " + std::to_string(level);
  return name + ": " + std::string(text);
}

} // namespace kvt::profiling
