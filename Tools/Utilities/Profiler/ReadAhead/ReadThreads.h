// How many threads the tools read a log with: KVT_PROFILER_THREADS in the environment, else one.
// One thread reads and verifies every chunk itself, as the readers do. More are not the default:
// on the 2-core machine the benchmark runs on, a chunk verified on another core takes half as
// long again to dispatch as one verified where it is dispatched, more than the verification
// saved (README, Performance).
#pragma once

#include "log/ParseDriver.h"

#include <optional>
#include <string>

namespace kvt::profiling {

inline constexpr unsigned maxReadThreads = 256;

// The threads the hardware runs at once, at least 1.
unsigned hardwareThreads();

// KVT_PROFILER_THREADS when it is a whole number from 1 to maxReadThreads; 1 when it is unset
// or empty; none for anything else.
std::optional<unsigned> readThreadsSetting();
// "KVT_PROFILER_THREADS must be a whole number from 1 to 256, not \"x\"".
std::string describeBadReadThreads();

// options reading ahead on threads - 1 helpers; unchanged for one thread. A bad setting reads
// as one thread (the tools refuse it before they read).
LogReadOptions withReadAhead(LogReadOptions options);
LogReadOptions withReadAhead(LogReadOptions options, unsigned threads);

} // namespace kvt::profiling
