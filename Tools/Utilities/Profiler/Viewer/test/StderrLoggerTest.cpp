// The viewer's logger: expanding the library's formats and naming report levels.
#include "StderrLogger.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

std::string expand(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string text = expandFormat(format, arguments);
  va_end(arguments);
  return text;
}

TEST(StderrLogger, ExpandsFormatsWithTheirArguments) {
  const std::string path(100000, 'p'); // longer than any fixed buffer
  EXPECT_EQ(expand("(Message Counter: %d) %u%% of %s", -3, 7u, "a.log"),
            "(Message Counter: -3) 7% of a.log");
  EXPECT_EQ(expand(""), "");
  EXPECT_EQ(expand("Invalid output chrometraceFile: [%s]", path.c_str()),
            "Invalid output chrometraceFile: [" + path + "]");
}

TEST(StderrLogger, HeadsEachReportWithItsLevel) {
  struct Case {
    const char* what;
    uint32_t level;
    const char* text;
    const char* line;
  };
  const Case cases[] = {
      {"error", 1, "Corrupted flatbuffer binary stream",
       "error: Corrupted flatbuffer binary stream"},
      {"warning", 2, "w", "warning: w"},
      {"info", 3, "i", "info: i"},
      {"debug", 4, "d", "debug: d"},
      {"verbose", 5, "hdr is nullptr", "verbose: hdr is nullptr"},
      {"below the named levels", 0, "z", "level 0: z"},
      {"above the named levels", 6, "s", "level 6: s"},
      {"one closing line feed dropped", 1, "two lines\n", "error: two lines"},
      {"only one line feed dropped", 1, "gap\n\n", "error: gap\n"},
      {"empty text", 5, "", "verbose: "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(formatReport(c.level, c.text), c.line);
  }
}

} // namespace
} // namespace kvt::profiling
