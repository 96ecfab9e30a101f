// The checks the programs put on option values, and the exit status of a wrong command line.
#include "CommandLine.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kvt::profiling {
namespace {

TEST(CommandLine, WholeNumbersArePlainDecimalWithinTheirRange) {
  struct Case {
    const char* what;
    const char* text;
    bool accepted;
  };
  const Case cases[] = {
      {"lowest", "-128", true},
      {"highest", "127", true},
      {"above", "128", false},
      {"below", "-129", false},
      {"far out of range", "99999999999", false},
      {"trailing text", "5x", false},
      {"plus sign", "+5", false},
      {"hexadecimal", "0x1", false},
      {"leading zero is decimal", "010", true},
      {"empty", "", false},
      {"blank", " 5", false},
  };
  const CLI::Validator check = wholeNumber<int32_t>(-128, 127);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::string text = c.text;
    EXPECT_EQ(check(text).empty(), c.accepted) << check(text);
  }
  std::string wrapped = "18446744073709551616";
  EXPECT_EQ(wholeNumber<uint64_t>(0, UINT64_MAX)(wrapped),
            "needs a whole number from 0 to 18446744073709551615, not '18446744073709551616'");
}

TEST(CommandLine, EveryErrorExitsWithTwoAndHelpAndVersionWithZero) {
  struct Case {
    const char* what;
    std::vector<std::string> args;
    int status;
    const char* out;
    const char* err;
  };
  const Case cases[] = {
      {"unknown option",
       {"--bogus"},
       2,
       "",
       "tool: The following argument was not expected: --bogus\n"
       "Run 'tool --help' for more information.\n"},
      {"missing value",
       {"--n"},
       2,
       "",
       "tool: --n: 1 required INT:from 0 to 5 missing\n"
       "Run 'tool --help' for more information.\n"},
      {"refused value",
       {"--n=9"},
       2,
       "",
       "tool: --n: needs a whole number from 0 to 5, not '9'\n"
       "Run 'tool --help' for more information.\n"},
      {"empty value",
       {"--name", ""},
       2,
       "",
       "tool: --name: needs a value\n"
       "Run 'tool --help' for more information.\n"},
      {"version", {"--version"}, 0, "tool " KVT_PROFILER_VERSION "\n", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CLI::App app("", "tool");
    setUpCommandLine(app);
    int number = 0;
    std::string name;
    app.add_option("--n", number)->check(wholeNumber(0, 5));
    app.add_option("--name", name)->check(nonEmpty());
    std::ostringstream out, err;
    EXPECT_EQ(parseCommandLine(app, c.args, out, err), c.status);
    EXPECT_EQ(out.str(), c.out);
    EXPECT_EQ(err.str(), c.err);
  }
}

} // namespace
} // namespace kvt::profiling
