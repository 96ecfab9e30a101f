// Bisection on the distribution function, which erfc gives to full precision in both tails; a
// comparison needs the quantile once per confidence, so speed does not matter here.
#include "NormalQuantile.h"

#include <cmath>

namespace kvt::profiling {

double normalQuantile(double p) {
  double low = -40;
  double high = 40;
  for (int step = 0; step < 200 && high - low > 1e-12; ++step) {
    const double middle = (low + high) / 2;
    if (std::erfc(-middle / std::sqrt(2.0)) / 2 < p)
      low = middle;
    else
      high = middle;
  }
  return (low + high) / 2;
}

} // namespace kvt::profiling
