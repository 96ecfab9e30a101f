// Reading and rewriting the viewer's golden files.
#include "GoldenFiles.h"

#include "support/GoldenCases.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <fstream>

namespace kvt::profiling::testing {

void expectGolden(const std::string& name, const std::string& actual) {
  const std::filesystem::path file = std::filesystem::path(KVT_VIEWER_GOLDEN_DIR) / name;
  if (updatingGolden()) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << actual;
    return;
  }
  ASSERT_TRUE(std::filesystem::exists(file))
      << file << " is missing; KVT_UPDATE_GOLDEN=1 writes it";
  EXPECT_EQ(actual, asWrittenInTextMode(readFile(file))) << "differs from " << file;
}

} // namespace kvt::profiling::testing
