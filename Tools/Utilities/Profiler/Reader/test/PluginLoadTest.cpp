// Loads the built reader libraries as a host does and drives them through their exports.
#include "DynamicLibrary.h"
#include "plugin/KvtProfileLogReader.h"
#include "plugin/ReaderExports.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <mutex>
#include <string>
#include <vector>

namespace kvt::profiling {
namespace {

std::mutex reportsMutex;
std::vector<std::string> reports;

void collect(const char* format, uint32_t level, uint64_t, va_list arguments) {
  char text[512];
  std::vsnprintf(text, sizeof text, format, arguments);
  std::lock_guard lock(reportsMutex);
  reports.push_back(std::to_string(level) + ": " + text);
}

// The library loaded the way the viewer loads it: dlopen, or LoadLibrary on Windows.
struct Library {
  explicit Library(const char* fileName) : loaded(std::string(KVT_READER_DIR "/") + fileName) {}
  template <typename F> F find(const char* symbol) const {
    return reinterpret_cast<F>(loaded.findSymbol(symbol));
  }
  DynamicLibrary loaded;
};

class PluginLoad : public ::testing::TestWithParam<const char*> {};

TEST_P(PluginLoad, CreatesParsesAndDeletesThroughTheExports) {
  Library library(GetParam());
  ASSERT_TRUE(library.loaded.isLoaded()) << library.loaded.loadError();
  const auto create = library.find<CreateReaderFunction>("createReader");
  const auto destroy = library.find<DeleteReaderFunction>("deleteReader");
  const auto registerLog = library.find<RegisterLoggerFunction>("registerLogger");
  const auto unregisterLog = library.find<UnregisterLoggerFunction>("unregisterLogger");
  ASSERT_TRUE(create && destroy && registerLog && unregisterLog);
  EXPECT_EQ(library.find<void*>("logMessage"), nullptr);

  reports.clear();
  registerLog(collect, 1, 0);
  KvtReader* reader = create("/nonexistent/profile.log", VisibilityLevel::keepAll);
  ASSERT_NE(reader, nullptr);
  auto* concrete = static_cast<KvtProfileLogReader*>(reader);
  EXPECT_TRUE(concrete->isReady());
  EXPECT_FALSE(concrete->parseLog(false));
  EXPECT_EQ(reader->printHeaderDetails(), "");
  destroy(reader);
  destroy(nullptr);
  unregisterLog();
  EXPECT_EQ(reports, std::vector<std::string>{"1: Invalid or nonexistent file: "
                                              "/nonexistent/profile.log"});
}

INSTANTIATE_TEST_SUITE_P(Readers, PluginLoad,
                         ::testing::Values(KVT_CHROMETRACE_READER_FILE, KVT_CSV_READER_FILE));

} // namespace
} // namespace kvt::profiling
