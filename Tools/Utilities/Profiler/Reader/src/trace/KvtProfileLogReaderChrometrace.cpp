// The trace reader's operations.
#include "KvtProfileLogReaderChrometrace.h"

namespace kvt::profiling {

KvtProfileLogReaderChrometrace::~KvtProfileLogReaderChrometrace() = default;

bool KvtProfileLogReaderChrometrace::writeOutputs(const std::string&) {
  return false;
}

void KvtProfileLogReaderChrometrace::writeBackendReport(std::ostream&, const EventList&, unsigned) {
}

} // namespace kvt::profiling
