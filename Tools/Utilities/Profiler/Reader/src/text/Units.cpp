// Not built yet.
#include "Units.h"

namespace kvt::profiling {
std::string unitName(uint32_t) {
  return {};
}
std::string unitSuffix(uint32_t) {
  return {};
}
std::string formatValue(uint32_t, uint64_t) {
  return {};
}
} // namespace kvt::profiling
