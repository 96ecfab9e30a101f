// Keyed draws: SplitMix64's finaliser folds the keys into the seed one by one.
#include "SynthFigures.h"

namespace kvt::profiling {

namespace {

// Every input bit reaches every output bit.
constexpr uint64_t mixBits(uint64_t x) {
  x += 0x9e3779b97f4a7c15u;
  x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9u;
  x = (x ^ (x >> 27)) * 0x94d049bb133111ebu;
  return x ^ (x >> 31);
}

} // namespace

FigureSource::FigureSource(uint64_t seed) : seedBits(mixBits(seed)) {}

uint64_t FigureSource::draw(std::initializer_list<uint64_t> keys, uint64_t low,
                            uint64_t high) const {
  return low + drawBits(keys) % (high - low + 1);
}

uint64_t FigureSource::drawBits(std::initializer_list<uint64_t> keys) const {
  uint64_t bits = seedBits;
  for (const uint64_t key : keys)
    bits = mixBits(bits ^ key);
  return bits;
}

} // namespace kvt::profiling
