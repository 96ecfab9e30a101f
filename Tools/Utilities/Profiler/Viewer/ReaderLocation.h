// Where the reader library chosen with --reader lies, and where this program itself lies.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace kvt::profiling {

// The library file for a --reader choice. "chrometrace" and "csv" name the readers built with
// this program: they are looked for next to the executable (build tree, Windows install), then
// in the installed reader folder relative to it (bin/../lib/kvt-profiler); the first that exists
// is returned. Any other choice is the path of a library, made absolute against the working
// directory, normalised and returned whether it exists or not. Empty, with error saying why, when
// a named reader is in neither place or the path is empty.
std::optional<std::filesystem::path> findReaderLibrary(const std::string& choice,
                                                       const std::filesystem::path& executableDir,
                                                       std::string& error);

// The running program's own file; empty where the platform cannot tell.
std::filesystem::path executablePath();

} // namespace kvt::profiling
