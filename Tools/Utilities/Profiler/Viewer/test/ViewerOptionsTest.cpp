// The viewer's command line: every option, its defaults, and the arguments it refuses.
#include "ViewerOptions.h"

#include <gtest/gtest.h>

#include <vector>

namespace kvt::profiling {
namespace {

using Arguments = std::vector<std::string_view>;

TEST(ViewerOptions, ParsesValidCommandLines) {
  struct Case {
    const char* what;
    Arguments arguments;
    const char* input;
    const char* output;
    const char* reader;
    int visibility;
    bool extended;
    int logLevel;
    bool help;
  };
  const Case cases[] = {
      {"defaults", {"--input", "a.log"}, "a.log", "", "chrometrace", 127, false, 1, false},
      {"every option",
       {"--input", "a.log", "--output", "t.json", "--reader", "csv", "--visibility", "-128",
        "--extended-backend-report", "--log-level", "5"},
       "a.log",
       "t.json",
       "csv",
       -128,
       true,
       5,
       false},
      {"values after '='",
       {"--input=a.log", "--output=t.json", "--reader=/x/libR.so", "--visibility=0",
        "--log-level=0"},
       "a.log",
       "t.json",
       "/x/libR.so",
       0,
       false,
       0,
       false},
      {"a value holding '='",
       {"--input=a=b.log"},
       "a=b.log",
       "",
       "chrometrace",
       127,
       false,
       1,
       false},
      {"a later option wins",
       {"--input", "a", "--input", "b"},
       "b",
       "",
       "chrometrace",
       127,
       false,
       1,
       false},
      {"a value may start with one dash",
       {"--input", "-a.log", "--visibility", "-1"},
       "-a.log",
       "",
       "chrometrace",
       -1,
       false,
       1,
       false},
      {"highest visibility",
       {"--input", "a", "--visibility", "127"},
       "a",
       "",
       "chrometrace",
       127,
       false,
       1,
       false},
      {"help needs no input", {"--help"}, "", "", "chrometrace", 127, false, 1, true},
      {"short help", {"-h"}, "", "", "chrometrace", 127, false, 1, true},
      {"help stops parsing",
       {"--input", "a", "--help", "--bogus"},
       "a",
       "",
       "chrometrace",
       127,
       false,
       1,
       true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ParsedOptions parsed = parseViewerOptions(c.arguments);
    EXPECT_EQ(parsed.error, "");
    EXPECT_EQ(parsed.options.inputPath, c.input);
    EXPECT_EQ(parsed.options.outputPath, c.output);
    EXPECT_EQ(parsed.options.reader, c.reader);
    EXPECT_EQ(int(parsed.options.visibilityLevel), c.visibility);
    EXPECT_EQ(parsed.options.extendedBackendReport, c.extended);
    EXPECT_EQ(parsed.options.logLevel, c.logLevel);
    EXPECT_EQ(parsed.options.showHelp, c.help);
  }
}

TEST(ViewerOptions, RefusesInvalidCommandLines) {
  struct Case {
    const char* what;
    Arguments arguments;
    const char* error;
  };
  const Case cases[] = {
      {"no arguments", {}, "option --input is required"},
      {"no input", {"--output", "t.json"}, "option --input is required"},
      {"unknown option", {"--input", "a", "--bogus"}, "unknown option '--bogus'"},
      {"unknown short option", {"-x"}, "unknown option '-x'"},
      {"options are case-sensitive", {"--Input", "a"}, "unknown option '--Input'"},
      {"stray argument", {"--input", "a", "b"}, "unexpected argument 'b'"},
      {"missing value at the end", {"--input"}, "option --input needs a value"},
      {"next option taken for no value",
       {"--input", "--output", "t"},
       "option --input needs a value"},
      {"empty value after '='", {"--input="}, "option --input needs a value"},
      {"empty value", {"--input", "a", "--reader", ""}, "option --reader needs a value"},
      {"missing output value", {"--input", "a", "--output"}, "option --output needs a value"},
      {"visibility above 127",
       {"--input", "a", "--visibility", "128"},
       "option --visibility needs a whole number from -128 to 127, not '128'"},
      {"visibility below -128",
       {"--input", "a", "--visibility=-129"},
       "option --visibility needs a whole number from -128 to 127, not '-129'"},
      {"visibility not a number",
       {"--input", "a", "--visibility", "high"},
       "option --visibility needs a whole number from -128 to 127, not 'high'"},
      {"visibility with trailing text",
       {"--input", "a", "--visibility", "5x"},
       "option --visibility needs a whole number from -128 to 127, not '5x'"},
      {"visibility with a plus sign",
       {"--input", "a", "--visibility", "+5"},
       "option --visibility needs a whole number from -128 to 127, not '+5'"},
      {"visibility far out of range",
       {"--input", "a", "--visibility", "99999999999"},
       "option --visibility needs a whole number from -128 to 127, not '99999999999'"},
      {"log level above 5",
       {"--input", "a", "--log-level", "6"},
       "option --log-level needs a whole number from 0 to 5, not '6'"},
      {"negative log level",
       {"--input", "a", "--log-level", "-1"},
       "option --log-level needs a whole number from 0 to 5, not '-1'"},
      {"log level in hex",
       {"--input", "a", "--log-level", "0x1"},
       "option --log-level needs a whole number from 0 to 5, not '0x1'"},
      {"flag with a value",
       {"--input", "a", "--extended-backend-report=1"},
       "option --extended-backend-report takes no value"},
      {"help with a value", {"--help=all"}, "option --help takes no value"},
      {"error before help", {"--bogus", "--help"}, "unknown option '--bogus'"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(parseViewerOptions(c.arguments).error, c.error);
  }
}

} // namespace
} // namespace kvt::profiling
