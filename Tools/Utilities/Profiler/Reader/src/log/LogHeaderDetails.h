// The values a reader keeps of the log header.
#pragma once

#include "ProfileLog_generated.h"

#include <cstdint>
#include <string>

namespace kvt::profiling {

struct LogHeaderDetails {
  std::string netRunVersion;         // version of the host tool that wrote the log
  std::string backendVersion;        // version of its back end
  bool headerSaved = false;          // set once a header was copied
  uint64_t epochTimestampUs = 0;     // log creation, microseconds since the Unix epoch
  uint64_t steadyClockTimestamp = 0; // steady-clock reading at log creation
  float timeScale = 0;               // the log's time scale
};

// Copies the header's values; absent scalars read 0, absent strings leave the field as it was.
void copyHeaderDetails(const schema::LogHeader& header, LogHeaderDetails& details);

} // namespace kvt::profiling
