// Copying the header out of its chunk, which is released after parsing it.
#include "LogHeaderDetails.h"

namespace kvt::profiling {

void copyHeaderDetails(const schema::LogHeader& header, LogHeaderDetails& details) {
  details.epochTimestampUs = header.epoch_timestamp_us();
  details.steadyClockTimestamp = header.steady_clock_timestamp();
  details.timeScale = header.time_scale();
  if (const auto* version = header.net_run_version())
    details.netRunVersion = version->str();
  if (const auto* version = header.backend_version())
    details.backendVersion = version->str();
  details.headerSaved = true;
}

} // namespace kvt::profiling
