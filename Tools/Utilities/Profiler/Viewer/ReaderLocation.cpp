// Resolving --reader choices against the build-tree and installed layouts.
#include "ReaderLocation.h"

#include <array>
#include <string_view>
#include <system_error>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace kvt::profiling {

namespace {

struct NamedReader {
  std::string_view name;
  std::string_view fileName; // the platform's file name of the built library
};

#if defined(_WIN32)
constexpr size_t longestPath = 32768; // characters in the longest path Windows accepts
#endif

constexpr std::array namedReaders{
    NamedReader{"chrometrace", KVT_CHROMETRACE_READER_FILE},
    NamedReader{"csv", KVT_CSV_READER_FILE},
};

} // namespace

std::optional<std::filesystem::path> findReaderLibrary(const std::string& choice,
                                                       const std::filesystem::path& executableDir,
                                                       std::string& error) {
  for (const NamedReader& reader : namedReaders) {
    if (choice != reader.name)
      continue;
    const std::array candidates{
        executableDir / reader.fileName,
        (executableDir / KVT_INSTALLED_READER_DIR / reader.fileName).lexically_normal(),
    };
    for (const std::filesystem::path& candidate : candidates) {
      std::error_code ignored;
      if (std::filesystem::is_regular_file(candidate, ignored))
        return candidate;
    }
    error = "cannot find the " + choice + " reader: no " + std::string(reader.fileName) + " in " +
            executableDir.string() + " or " + candidates[1].parent_path().string();
    return std::nullopt;
  }
  // A bare file name must stay a path: the loader would otherwise search its own folders.
  std::error_code failure;
  std::filesystem::path path = std::filesystem::absolute(choice, failure);
  if (failure) {
    error = "invalid reader library path '" + choice + "': " + failure.message();
    return std::nullopt;
  }
  return path.lexically_normal();
}

std::filesystem::path executablePath() {
#if defined(_WIN32)
  std::wstring path(MAX_PATH, L'\0');
  while (path.size() <= longestPath) {
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), DWORD(path.size()));
    if (length == 0)
      return {};
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
  return {};
#elif defined(__linux__)
  std::error_code error;
  std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::filesystem::path() : path;
#else
  return {};
#endif
}

} // namespace kvt::profiling
