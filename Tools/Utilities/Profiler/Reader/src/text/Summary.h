// The statistics summary: init, compose, finalize, de-init, execute and library-load figures.
#pragma once

#include "ReportContext.h"

#include <ostream>

namespace kvt::profiling {

void writeHeaderDetailsLine(std::ostream& out, const ReportContext& context);
// Title, rule and the init, compose graphs, finalize and de-init sections.
void writeRunStatistics(std::ostream& out, const ReportContext& context);

void writeInitStats(std::ostream& out, const ReportContext& context);
void writeComposeGraphsStats(std::ostream& out, const ReportContext& context);
void writeFinalizeStats(std::ostream& out, const ReportContext& context);
void writeDeInitStats(std::ostream& out, const ReportContext& context);
void writeExecuteAverageStats(std::ostream& out, const ReportContext& context);
void writeExecuteOverallStats(std::ostream& out, const ReportContext& context);
void writeLibLoadStats(std::ostream& out, const ReportContext& context);

} // namespace kvt::profiling
