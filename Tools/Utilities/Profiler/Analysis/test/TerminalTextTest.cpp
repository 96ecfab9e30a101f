// Bytes that are not UTF-8 cannot be written in a readable JSON log, so the escaping of a name
// for the terminal is tested here on raw bytes; names that JSON can hold are golden cases of the
// log tool.
#include "reports/TerminalText.h"

#include <gtest/gtest.h>

#include <string>

namespace kvt::profiling::analysis_internal {
namespace {

TEST(TerminalText, BytesThatAreNotUtf8AreEscapedOneByOne) {
  struct Case {
    const char* what;
    std::string text;
    std::string expected;
  };
  const Case cases[] = {
      {"valid text of 1 to 4 bytes a character stays", "a\xC3\xBC\xE2\x98\x83\xF0\x9F\x98\x80",
       "a\xC3\xBC\xE2\x98\x83\xF0\x9F\x98\x80"},
      {"a lone continuation byte", "a\x80z", "a\\x80z"},
      {"a sequence cut by the end", "a\xE2\x98", "a\\xe2\\x98"},
      {"a sequence cut by another character", "\xE2\x98z", "\\xe2\\x98z"},
      {"an overlong form of '/'", "\xC0\xAF", "\\xc0\\xaf"},
      {"an overlong three-byte form", "\xE0\x80\xAF", "\\xe0\\x80\\xaf"},
      {"a surrogate", "\xED\xA0\x80", "\\xed\\xa0\\x80"},
      {"beyond U+10FFFF", "\xF4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},
      {"a byte no character starts with", "\xFF", "\\xff"},
      {"DEL", "\x7F", "\\x7f"},
      {"the last C1 control", "\xC2\x9F", "\\u009f"},
      {"the first character after the C1 controls", "\xC2\xA0", "\xC2\xA0"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string safe = formatTerminalText(c.text);
    EXPECT_EQ(safe, c.expected);
    EXPECT_EQ(formatTerminalText(safe), safe);
  }
}

} // namespace
} // namespace kvt::profiling::analysis_internal
