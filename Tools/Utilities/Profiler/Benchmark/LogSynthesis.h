// Makes the benchmark's input logs with the log tool's synthesiser.
#pragma once

#include <cstdint>
#include <string>

namespace kvt::profiling {

// A synthesised run; every step carries its detailed sub-events, as the trace needs.
struct SynthShape {
  uint32_t graphs = 1;
  uint64_t executions = 1; // per graph
  uint32_t steps = 1;      // per execution
  uint32_t messagesPerChunk = 1;
  uint64_t noiseSeed = 0; // 0: the variation the default seed gives; else a fresh run of its model
};

// Runs the log tool at toolPath to write the log to path; false, with the reason on the
// standard error, when it could not.
bool synthesizeLog(const std::string& toolPath, const SynthShape& shape, const std::string& path);

} // namespace kvt::profiling
