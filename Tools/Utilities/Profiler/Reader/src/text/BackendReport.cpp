// Not built yet.
#include "BackendReport.h"

namespace kvt::profiling {
void writeBackendReportLines(std::ostream&, const EventList&, bool) {}
void dumpObjectEvent(const EventRecord&) {}
} // namespace kvt::profiling
