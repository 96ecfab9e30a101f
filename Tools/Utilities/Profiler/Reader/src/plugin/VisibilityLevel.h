// The visibility level that filters log messages: a message is kept only when its own level is
// strictly below the reader's.
#pragma once

#include <cstdint>

namespace kvt::profiling {

enum class VisibilityLevel : int8_t {
  keepAll = 127, // keeps every message whose level is below the maximum
};

} // namespace kvt::profiling
