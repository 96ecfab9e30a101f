// A shared library loaded at run time: dlopen/dlsym, or LoadLibrary/GetProcAddress on Windows.
#pragma once

#include <filesystem>
#include <string>

namespace kvt::profiling {

// Owns one loaded library and unloads it on destruction; movable, not copyable.
class DynamicLibrary {
public:
  // Loads the library at path; when that fails the object is empty and loadError() says why.
  explicit DynamicLibrary(const std::filesystem::path& path);
  DynamicLibrary(DynamicLibrary&& other) noexcept;
  DynamicLibrary& operator=(DynamicLibrary&& other) noexcept;
  DynamicLibrary(const DynamicLibrary&) = delete;
  DynamicLibrary& operator=(const DynamicLibrary&) = delete;
  ~DynamicLibrary();

  bool isLoaded() const { return handle != nullptr; }
  // The system's reason for a failed load; empty once loaded.
  const std::string& loadError() const { return error; }
  // The address of an exported symbol; null when the library does not export it.
  void* findSymbol(const char* name) const;

private:
  void unload();

  void* handle = nullptr;
  std::string error;
};

} // namespace kvt::profiling
