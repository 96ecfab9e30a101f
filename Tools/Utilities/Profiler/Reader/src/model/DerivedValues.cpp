// The derived-value steps.
#include "DerivedValues.h"

namespace kvt::profiling {

void computeDerivedValues(EventModel&, std::ostream&) {}

} // namespace kvt::profiling
