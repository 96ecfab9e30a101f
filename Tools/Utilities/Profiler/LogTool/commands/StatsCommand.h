// What the statistics commands, stats and compare, share on the command line.
#pragma once

namespace kvt::profiling {

// The bound on memory that both statistics commands state in their help.
inline constexpr const char* statisticsMemoryNote =
    "Memory: one chunk of the log, plus 8 bytes per value kept (up to twice that while a series\n"
    "grows): each counted execution keeps its duration, its queue wait, each top-level back-end\n"
    "record's value and each step's span and wait, nothing else.";

} // namespace kvt::profiling
