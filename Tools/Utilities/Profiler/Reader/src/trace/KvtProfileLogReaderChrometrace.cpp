// The trace reader's operations: the trace file with the run and execute statistics, and its
// own back-end report.
#include "KvtProfileLogReaderChrometrace.h"

#include "ResourceReport.h"
#include "TraceDocument.h"
#include "plugin/Logging.h"
#include "text/Summary.h"

#include <fstream>
#include <iomanip>
#include <sstream>

namespace kvt::profiling {

KvtProfileLogReaderChrometrace::KvtProfileLogReaderChrometrace(const std::string& logPath,
                                                               VisibilityLevel visibilityLevel)
    : KvtProfileLogReader(logPath, visibilityLevel, WithoutCsvLog{}) {}

KvtProfileLogReaderChrometrace::~KvtProfileLogReaderChrometrace() = default;

bool KvtProfileLogReaderChrometrace::writeOutputs(const std::string& outputPath) {
  if (outputPath.empty()) {
    logMessage(logError, "Output chrometraceFile not provided.");
    return false;
  }
  std::ofstream file(outputPath, std::ios::out | std::ios::trunc);
  if (!file.good()) {
    logMessage(logError, "Invalid output chrometraceFile: [%s]", outputPath.c_str());
    return false;
  }

  std::ostringstream statistics;
  statistics << std::fixed << std::setprecision(0);
  const ReportContext context = reportContext();
  writeHeaderDetailsLine(statistics, context);
  writeRunStatistics(statistics, context);
  writeExecuteAverageStats(statistics, context);

  // The statistics are printed only once the whole trace is in the file; an incompatible log
  // leaves the file empty and prints nothing, a full disk leaves part of the trace.
  if (!writeTraceJson(model.averageExecutionByGraph, file))
    return false;
  *printed << statistics.str() << std::flush;
  return true;
}

void KvtProfileLogReaderChrometrace::writeBackendReport(std::ostream& out, const EventList& events,
                                                        unsigned level) {
  writeTraceBackendReport(out, events, level);
}

} // namespace kvt::profiling
