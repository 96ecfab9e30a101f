// The figures of a synthesised run. Each is drawn from the seed and the place it belongs to (a
// purpose, then graph, step, execution and the like), so the generator keeps no random state and
// any figure can be drawn again.
#pragma once

#include <cstdint>
#include <initializer_list>

namespace kvt::profiling {

// First key of every draw; keeps the figures of different purposes apart.
enum FigurePurpose : uint64_t {
  purposeClock = 1,
  purposeLibLoad,
  purposeInit,
  purposePhaseGap,
  purposeFinalize,
  purposeStepBase,
  purposeStepWaitBase,
  purposeStepShape,
  purposeStepVariation,
  purposeExecution,
};

class FigureSource {
public:
  explicit FigureSource(uint64_t seed);

  // A figure from low to high, both included, that depends only on the seed and the keys.
  uint64_t draw(std::initializer_list<uint64_t> keys, uint64_t low, uint64_t high) const;

  // All 64 bits of the draw for the keys, for figures built from several uniform parts.
  uint64_t drawBits(std::initializer_list<uint64_t> keys) const;

private:
  uint64_t seedBits; // the seed, mixed once for all draws
};

} // namespace kvt::profiling
