// A picture of how a series' values spread: a one-line histogram of block characters.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace kvt::profiling::analysis_internal {

inline constexpr size_t distributionBins = 10; // characters of the picture

// The sorted values in distributionBins equal bins from their min to their max, each bin drawn
// by a block from U+2581 to U+2588 as high as its count against the fullest bin's (a bin with
// any value shows at least the lowest block, an empty one a blank). One block when every value
// is equal; empty for no values. Example: {1, 1, 1, 10} gives "█        ▃".
std::string drawDistribution(std::span<const uint64_t> sorted);

} // namespace kvt::profiling::analysis_internal
