// The viewer's lines on the standard error: its own diagnostics and the reader library's reports.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <string>
#include <string_view>

namespace kvt::profiling {

// Prints "kvt-profile-viewer: <text>" and a line end on the standard error, in one write.
void printDiagnostic(std::string_view text);

// The logger registered with the reader library: prints each report as one diagnostic line
// headed by its level's name, without the timestamp so that runs compare equal:
// (level 1, "Invalid or nonexistent file: %s", "a.log")
//   -> "kvt-profile-viewer: error: Invalid or nonexistent file: a.log".
void logToStderr(const char* format, uint32_t level, uint64_t timestampNs, va_list arguments);

// The printf-style format expanded with its arguments, however long; empty when the format is
// invalid. arguments is consumed.
std::string expandFormat(const char* format, va_list arguments);

// "error: text" for a report of level 1; 2 warning, 3 info, 4 debug, 5 verbose, other levels
// "level N". One line feed ending the text is dropped, keeping one line per report.
std::string formatReport(uint32_t level, std::string_view text);

} // namespace kvt::profiling
