// The viewer finds how far its own process has read a file, as it does for the reader library.
#include "ReadProgress.h"

#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace kvt::profiling {
namespace {

TEST(ReadProgress, FindsTheReadPositionOfAnOpenFile) {
  const testing::TempDir dir;
  const std::filesystem::path file = dir.write("run.log", "0123456789");
  EXPECT_EQ(findReadPosition(file), std::nullopt) << "not open";
  const int descriptor = open(file.c_str(), O_RDONLY);
  ASSERT_GE(descriptor, 0);
  char bytes[3];
  ASSERT_EQ(read(descriptor, bytes, sizeof bytes), 3);
  // Named through a detour, as a user may name the log.
  EXPECT_EQ(findReadPosition(dir.path() / ".." / dir.path().filename() / "run.log"), 3u);
  close(descriptor);
}

} // namespace
} // namespace kvt::profiling
