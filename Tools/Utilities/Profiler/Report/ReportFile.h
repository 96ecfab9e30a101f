// Writes a report file whole or not at all.
#pragma once

#include <functional>
#include <ostream>
#include <string>

namespace kvt::profiling {

// Writes what write puts out to a temporary file beside path, then renames it to path; false,
// with nothing left at path's temporary name and path untouched, when a write, the flush or the
// rename fails.
bool writeWholeFile(const std::string& path, const std::function<void(std::ostream&)>& write);

} // namespace kvt::profiling
