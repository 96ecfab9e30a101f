// The saved log header as a short block of text.
#pragma once

#include "log/LogHeaderDetails.h"

#include <string>

namespace kvt::profiling {

// The reader's own version, printed in the header and the CSV.
inline constexpr const char* readerVersion = "v3.17.4.231102093015_41736";

// When the log was created (local time), its time scale and clock stamps, and the tools that
// made it; empty (with a verbose report) when no header was saved.
std::string formatHeaderDetails(const LogHeaderDetails& header);

} // namespace kvt::profiling
