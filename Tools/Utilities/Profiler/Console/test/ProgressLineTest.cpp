// The progress line's text: share done, bytes against the whole when it is known, rate, time.
#include "ProgressLine.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

TEST(ProgressLine, FormatsTheFigures) {
  constexpr uint64_t mib = 1 << 20;
  struct Case {
    const char* what;
    Progress progress;
    double seconds;
    const char* line;
  };
  const Case cases[] = {
      {"work units and bytes written",
       {42, 100, 512 * mib, 0},
       4.0,
       "job: 42%, 512.0 MiB, 128.0 MiB/s, 4.0 s"},
      {"bytes read of a known size",
       {3 * mib, 4 * mib, 3 * mib, 4 * mib},
       1.5,
       "job: 75%, 3.0 of 4.0 MiB, 2.0 MiB/s, 1.5 s"},
      {"nothing to do counts as done", {0, 0, 0, 0}, 2.0, "job: 100%, 0.0 MiB, 0.0 MiB/s, 2.0 s"},
      {"no time has passed", {1, 2, mib, 0}, 0.0, "job: 50%, 1.0 MiB, 0.0 MiB/s, 0.0 s"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(formatProgress("job", c.progress, c.seconds), c.line);
  }
}

} // namespace
} // namespace kvt::profiling
