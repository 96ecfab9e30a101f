// Local time as UTC for the whole test process, so that printed creation times read the same on
// every machine.
#pragma once

#include <cstdlib>
#include <ctime>

namespace kvt::profiling::testing {

inline void useUtcLocalTime() {
#if defined(_WIN32)
  _putenv_s("TZ", "UTC");
  _tzset();
#else
  setenv("TZ", "UTC", 1);
  tzset();
#endif
}

} // namespace kvt::profiling::testing
