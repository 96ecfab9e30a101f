// How the durations of a synthesised step vary from one execution to the next.
#pragma once

#include "SynthFigures.h"

#include <cstdint>

namespace kvt::profiling {

enum class SynthNoise {
  mild, // a step's span within 10 % of its base, its wait within 30 %, evenly spread
  heavy // the shape measured times have: right skew, rare outliers and a drift along the run
};

// Where in the run a heavy-noise figure falls.
struct NoisePlace {
  uint32_t graph = 0;
  uint32_t step = 0;
  uint64_t execution = 0;
  uint64_t executions = 0; // of the graph, over which the drift grows
  uint64_t key = 0;        // which figure of the step
};

// The factor heavy noise gives the base of one figure, drawn from noise and the place alone.
// Its median is about 1: a floor at 0.9 plus a log-normal excess (right skew, up to about 1.7),
// times 3 to 6 for one figure in a hundred, times 1 to 1.04 from the first execution to the last.
double drawHeavyNoise(const FigureSource& noise, const NoisePlace& place);

} // namespace kvt::profiling
