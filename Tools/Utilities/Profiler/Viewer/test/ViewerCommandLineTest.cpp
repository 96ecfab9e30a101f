// The viewer's option set: names, defaults and value forms, and the values it refuses.
#include "ViewerCommandLine.h"
#include "CommandLine.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kvt::profiling {
namespace {

// The options a command line gives, or nothing with status 2 when the viewer refuses it.
std::optional<ViewerOptions> parse(const std::vector<std::string>& args) {
  ViewerOptions options;
  CLI::App app("", "kvt-profile-viewer");
  addViewerOptions(app, options);
  std::ostringstream out, err;
  if (const std::optional<int> status = parseCommandLine(app, args, out, err)) {
    EXPECT_EQ(*status, 2) << out.str();
    return std::nullopt;
  }
  return options;
}

TEST(ViewerCommandLine, ReadsEveryOption) {
  const std::optional<ViewerOptions> defaults = parse({"--input", "a.log"});
  ASSERT_TRUE(defaults);
  EXPECT_EQ(defaults->outputPath, "");
  EXPECT_EQ(defaults->reader, "chrometrace");
  EXPECT_EQ(int(defaults->visibilityLevel), 127);
  EXPECT_FALSE(defaults->extendedBackendReport);
  EXPECT_EQ(defaults->logLevel, 1);

  const std::optional<ViewerOptions> every =
      parse({"--input=a=b.log", "--output", "t.json", "--reader=csv", "--visibility", "-128",
             "--extended-backend-report", "--log-level=5", "--input", "c.log"});
  ASSERT_TRUE(every);
  EXPECT_EQ(every->inputPath, "c.log");
  EXPECT_EQ(every->outputPath, "t.json");
  EXPECT_EQ(every->reader, "csv");
  EXPECT_EQ(int(every->visibilityLevel), -128);
  EXPECT_TRUE(every->extendedBackendReport);
  EXPECT_EQ(every->logLevel, 5);
}

TEST(ViewerCommandLine, RefusesWhatItCannotUse) {
  struct Case {
    const char* what;
    std::vector<std::string> args;
  };
  const Case cases[] = {
      {"no input", {"--output", "t.json"}},
      {"empty input", {"--input="}},
      {"empty reader", {"--input", "a", "--reader", ""}},
      {"visibility above 127", {"--input", "a", "--visibility", "128"}},
      {"visibility below -128", {"--input", "a", "--visibility=-129"}},
      {"log level above 5", {"--input", "a", "--log-level", "6"}},
      {"negative log level", {"--input", "a", "--log-level", "-1"}},
      {"stray argument", {"--input", "a", "b"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_FALSE(parse(c.args));
  }
}

} // namespace
} // namespace kvt::profiling
