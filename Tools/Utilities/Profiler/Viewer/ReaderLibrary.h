// A reader library loaded at run time, with the four functions it exports.
#pragma once

#include "DynamicLibrary.h"
#include "plugin/ReaderExports.h"

#include <filesystem>
#include <optional>
#include <string>

namespace kvt::profiling {

struct ReaderExports {
  CreateReaderFunction createReader = nullptr;
  DeleteReaderFunction deleteReader = nullptr;
  RegisterLoggerFunction registerLogger = nullptr;
  UnregisterLoggerFunction unregisterLogger = nullptr;
};

// Owns the loaded library; unloading it frees the code of its readers, so every reader it made
// must be deleted before it is destroyed.
class ReaderLibrary {
public:
  // Loads the library at path and finds its exports. Empty, with error saying why, when the
  // library cannot be loaded or lacks one of the exports.
  static std::optional<ReaderLibrary> open(const std::filesystem::path& path, std::string& error);

  const ReaderExports& exports() const { return functions; }

private:
  ReaderLibrary(DynamicLibrary library, ReaderExports functions);

  DynamicLibrary library;
  ReaderExports functions;
};

} // namespace kvt::profiling
