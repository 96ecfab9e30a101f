// The histogram picture. Bins are found in doubles: values span all of uint64_t.
#include "Distribution.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace kvt::profiling::analysis_internal {

namespace {

constexpr std::array<std::string_view, 8> blocks{"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};

} // namespace

std::string drawDistribution(std::span<const uint64_t> sorted) {
  if (sorted.empty())
    return {};
  const uint64_t min = sorted.front();
  const double range = double(sorted.back() - min);
  if (range == 0)
    return std::string(blocks.back());
  std::array<uint64_t, distributionBins> counts{};
  for (const uint64_t value : sorted) {
    const size_t bin = size_t(double(value - min) / range * double(distributionBins));
    ++counts[std::min(bin, distributionBins - 1)];
  }
  const uint64_t fullest = *std::max_element(counts.begin(), counts.end());
  std::string picture;
  for (const uint64_t count : counts) {
    if (count == 0) {
      picture += ' ';
      continue;
    }
    // Heights 1 to 8, rounded up so that a single value still shows.
    const uint64_t height = (count * blocks.size() + fullest - 1) / fullest;
    picture += blocks[height - 1];
  }
  return picture;
}

} // namespace kvt::profiling::analysis_internal
