// Loads the built reader libraries as a host does and drives them through their exports.
#include "plugin/KvtProfileLogReader.h"
#include "plugin/ReaderExports.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <dlfcn.h>
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

struct Library {
  explicit Library(const std::string& name)
      : handle(dlopen((std::string(KVT_READER_DIR "/lib") + name + ".so").c_str(),
                      RTLD_NOW | RTLD_LOCAL)) {}
  ~Library() {
    if (handle)
      dlclose(handle);
  }
  template <typename F> F find(const char* symbol) const {
    return reinterpret_cast<F>(dlsym(handle, symbol));
  }
  void* handle;
};

class PluginLoad : public ::testing::TestWithParam<const char*> {};

TEST_P(PluginLoad, CreatesParsesAndDeletesThroughTheExports) {
  Library library(GetParam());
  ASSERT_NE(library.handle, nullptr) << dlerror();
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
                         ::testing::Values("KvtChrometraceProfilingReader",
                                           "KvtCsvProfilingReader"));

} // namespace
} // namespace kvt::profiling
