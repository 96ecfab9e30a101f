// Loading a reader library and resolving its exports by their plain names.
#include "ReaderLibrary.h"

#include <utility>

namespace kvt::profiling {

namespace {

// Adds name to the comma-separated missing list when the library does not export it.
template <typename Function>
void findExport(const DynamicLibrary& library, const char* name, Function& function,
                std::string& missing) {
  function = reinterpret_cast<Function>(library.findSymbol(name));
  if (!function)
    missing += missing.empty() ? name : std::string(", ") + name;
}

} // namespace

ReaderLibrary::ReaderLibrary(DynamicLibrary library, ReaderExports functions)
    : library(std::move(library)), functions(functions) {}

std::optional<ReaderLibrary> ReaderLibrary::open(const std::filesystem::path& path,
                                                 std::string& error) {
  DynamicLibrary library(path);
  if (!library.isLoaded()) {
    error = "cannot load reader library " + path.string() + ": " + library.loadError();
    return std::nullopt;
  }
  ReaderExports functions;
  std::string missing;
  findExport(library, "createReader", functions.createReader, missing);
  findExport(library, "deleteReader", functions.deleteReader, missing);
  findExport(library, "registerLogger", functions.registerLogger, missing);
  findExport(library, "unregisterLogger", functions.unregisterLogger, missing);
  if (!missing.empty()) {
    error = path.string() + " is not a reader library: it does not export " + missing;
    return std::nullopt;
  }
  return ReaderLibrary(std::move(library), functions);
}

} // namespace kvt::profiling
