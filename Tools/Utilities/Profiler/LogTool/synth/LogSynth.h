// Synthesises the log of a whole run of the host tool: library load, init, compose, the finalize
// and executions of every graph, the overall figures and de-init. Deterministic for a seed, and
// written chunk by chunk in memory that does not grow with the number of executions.
#pragma once

#include "SynthNoise.h"
#include "SynthScales.h"
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace kvt::profiling {

enum class SynthDetail {
  basic,  // execution steps without sub-events
  linting // every step carries its wait, background and resource sub-events
};

struct SynthOptions {
  std::string outputPath;
  uint32_t graphs = 2;
  uint64_t executions = 10; // per graph
  uint32_t steps = 8;       // per execution
  SynthDetail detail = SynthDetail::linting;
  bool queueWait = false; // executions of method type 3, each with one queue-wait event
  uint32_t messagesPerChunk = 16;
  uint64_t seed = 1;
  // The variation from one execution to the next (of steps, queue waits and the gaps around
  // executions) comes from this seed; the model (names, base values, shapes, every other phase)
  // from seed alone. Without it, from seed too.
  std::optional<uint64_t> noiseSeed;
  SynthNoise noise = SynthNoise::mild;
  std::vector<StepScale> stepScales; // every name must be a step's of the run
  double runScale = 1;               // of every duration of the run
};

// Bounds on the options, which keep every chunk far below the 2 GiB a buffer may hold.
struct SynthLimits {
  static constexpr uint32_t maxGraphs = 100000;            // graphs of one run
  static constexpr uint64_t maxExecutions = 1000000000000; // executions of one graph
  static constexpr uint32_t maxSteps = 100000;             // steps of one execution
  static constexpr uint32_t maxMessagesPerChunk = 1000000; // messages of one chunk
};

// The first step scale that names no step of the run; null when each names one.
const StepScale* findUnmatchedScale(const SynthOptions& options);

// Writes the log to options.outputPath, with a progress line on progressOut when showProgress (a
// terminal) and the job takes longer than a second. Returns why, "cannot write run.log: No space
// left on device", with no file left behind, when the log cannot be written; nothing when it was.
std::optional<std::string> synthLog(const SynthOptions& options, std::ostream& progressOut,
                                    bool showProgress);

} // namespace kvt::profiling
