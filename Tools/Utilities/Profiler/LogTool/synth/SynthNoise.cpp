// Heavy noise from keyed uniform draws: four 16-bit parts of one draw sum to a near-normal
// deviate (Irwin-Hall), whose exponential makes the right-skewed excess.
#include "SynthNoise.h"

#include <cmath>

namespace kvt::profiling {

namespace {

constexpr double floorShare = 0.9;         // the fastest a step runs, as a share of its base
constexpr double excessSigma = 0.6;        // spread of the excess's logarithm
constexpr uint64_t outlierPerMyriad = 100; // outliers per 10000 figures
constexpr double driftShare = 0.04;        // the last execution's slowdown over the first one

// A deviate with mean 0 and variance 1, within +-3.46.
double nearNormal(uint64_t bits) {
  double sum = 0;
  for (int part = 0; part < 4; ++part)
    sum += double((bits >> (16 * part)) & 0xffff) / 65536.0;
  return (sum - 2) * std::sqrt(3.0);
}

} // namespace

double drawHeavyNoise(const FigureSource& noise, const NoisePlace& place) {
  const double excess =
      std::exp(excessSigma * nearNormal(noise.drawBits({purposeStepVariation, place.graph,
                                                        place.step, place.execution, place.key})));
  double factor = floorShare + (1 - floorShare) * excess;
  const uint64_t outlier = noise.draw(
      {purposeStepVariation, place.graph, place.step, place.execution, place.key, 1}, 0, 9999);
  if (outlier < outlierPerMyriad)
    factor *= 3 + 3 * double(outlier) / double(outlierPerMyriad);
  if (place.executions > 1)
    factor *= 1 + driftShare * double(place.execution) / double(place.executions - 1);
  return factor;
}

} // namespace kvt::profiling
