// The standard normal distribution's quantile, which the rank test's approximations need.
#pragma once

namespace kvt::profiling {

// The z for which a standard normal variable is below z with probability p, for p in (0, 1).
// Example: 0.975 gives 1.95996.
double normalQuantile(double p);

} // namespace kvt::profiling
