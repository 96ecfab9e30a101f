// dlopen and the exported functions; the standard output is pointed at /dev/null for the run.
#include "ReaderHost.h"

#include "plugin/KvtProfileLogReader.h"
#include "plugin/ReaderExports.h"

#include <cstdio>
#include <iostream>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace kvt::profiling {

namespace {

void printError(const char* format, uint32_t /*level*/, uint64_t /*timestampNs*/,
                va_list arguments) {
  std::fputs("reader: ", stderr);
  std::vfprintf(stderr, format, arguments);
  std::fputc('\n', stderr);
}

// Points the standard output at /dev/null while it lives.
class DiscardedStdout {
public:
  DiscardedStdout() : saved(dup(STDOUT_FILENO)) {
    const int null = open("/dev/null", O_WRONLY);
    if (null >= 0) {
      dup2(null, STDOUT_FILENO);
      close(null);
    }
  }
  DiscardedStdout(const DiscardedStdout&) = delete;
  DiscardedStdout& operator=(const DiscardedStdout&) = delete;
  ~DiscardedStdout() {
    std::cout.flush();
    if (saved >= 0) {
      dup2(saved, STDOUT_FILENO);
      close(saved);
    }
  }

private:
  int saved;
};

bool runReader(void* library, const std::string& logPath, const std::string& outputPath) {
  const auto create = reinterpret_cast<CreateReaderFunction>(dlsym(library, "createReader"));
  const auto destroy = reinterpret_cast<DeleteReaderFunction>(dlsym(library, "deleteReader"));
  const auto registerLog =
      reinterpret_cast<RegisterLoggerFunction>(dlsym(library, "registerLogger"));
  if (!create || !destroy || !registerLog)
    return false;
  registerLog(printError, logError, 0);
  KvtReader* reader = create(logPath, VisibilityLevel::keepAll);
  // parseLog is past the interface's slots; a host reaches it through the reader class.
  const bool done = static_cast<KvtProfileLogReader*>(reader)->parseLog(false) &&
                    reader->writeOutputs(outputPath);
  destroy(reader);
  return done;
}

} // namespace

bool runReaderLibrary(const std::string& libraryPath, const std::string& logPath,
                      const std::string& outputPath) {
  void* library = dlopen(libraryPath.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    std::fprintf(stderr, "kvt-profile-bench: %s\n", dlerror());
    return false;
  }
  bool done = false;
  {
    const DiscardedStdout discarded;
    done = runReader(library, logPath, outputPath);
  }
  dlclose(library);
  return done;
}

} // namespace kvt::profiling
