// Synthesises two runs of one model and compares them, which is how compare's false-alarm rate and
// power are measured: pairs with fresh noise and no change, or with a planted one.
#pragma once

#include "LogSynth.h"
#include "comparison/RunComparison.h"

#include <optional>
#include <string>

namespace kvt::profiling {

// Writes both runs into dir (the options' output paths are ignored), reads their statistics,
// removes the logs and compares them. None, with the reason on err, when a log cannot be written
// or read.
std::optional<Comparison> compareSynthesizedRuns(SynthOptions base, SynthOptions next,
                                                 const ComparisonOptions& options,
                                                 const std::string& dir, std::ostream& err);

// The options of the calibration pair number pair of a model: the same seed, and noise seeds of
// their own that no other pair shares.
SynthOptions calibrationRun(SynthOptions model, uint64_t pair, bool isNew);

} // namespace kvt::profiling
