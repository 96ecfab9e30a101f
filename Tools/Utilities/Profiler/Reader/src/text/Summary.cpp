// Not built yet.
#include "Summary.h"

namespace kvt::profiling {
void writeHeaderDetailsLine(std::ostream&, const ReportContext&) {}
void writeRunStatistics(std::ostream&, const ReportContext&) {}
void writeExecuteAverageStats(std::ostream&, const ReportContext&) {}
} // namespace kvt::profiling
