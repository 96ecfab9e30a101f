// Not built yet.
#include "HeaderDetails.h"

namespace kvt::profiling {
std::string formatHeaderDetails(const LogHeaderDetails&) {
  return {};
}
} // namespace kvt::profiling
