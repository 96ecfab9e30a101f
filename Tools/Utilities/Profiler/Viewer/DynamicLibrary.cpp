// The platform calls behind DynamicLibrary.
#include "DynamicLibrary.h"

#include <utility>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace kvt::profiling {

DynamicLibrary::DynamicLibrary(const std::filesystem::path& path) {
#if defined(_WIN32)
  handle = LoadLibraryW(path.wstring().c_str());
  if (!handle)
    error = "error code " + std::to_string(GetLastError());
#else
  // Local binding keeps two reader libraries' identical internals apart.
  handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char* reason = dlerror();
    error = reason ? reason : "unknown error";
  }
#endif
}

DynamicLibrary::DynamicLibrary(DynamicLibrary&& other) noexcept
    : handle(std::exchange(other.handle, nullptr)), error(std::move(other.error)) {}

DynamicLibrary& DynamicLibrary::operator=(DynamicLibrary&& other) noexcept {
  if (this != &other) {
    unload();
    handle = std::exchange(other.handle, nullptr);
    error = std::move(other.error);
  }
  return *this;
}

DynamicLibrary::~DynamicLibrary() {
  unload();
}

void* DynamicLibrary::findSymbol(const char* name) const {
  if (!handle)
    return nullptr;
#if defined(_WIN32)
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name));
#else
  return dlsym(handle, name);
#endif
}

void DynamicLibrary::unload() {
  if (!handle)
    return;
#if defined(_WIN32)
  FreeLibrary(static_cast<HMODULE>(handle));
#else
  dlclose(handle);
#endif
  handle = nullptr;
}

} // namespace kvt::profiling
