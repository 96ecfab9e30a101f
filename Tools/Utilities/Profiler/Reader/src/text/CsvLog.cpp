// The frame of the base reader's outputs: the summary is assembled first and printed only once
// the CSV file is complete, so a failed open prints nothing at all.
#include "CsvLog.h"

#include "CsvRows.h"
#include "Summary.h"
#include "plugin/Logging.h"

#include <fstream>
#include <iomanip>
#include <sstream>

namespace kvt::profiling {
namespace {

using namespace text_internal; // the rows of the event log

void writeFullSummary(std::ostream& out, const ReportContext& context) {
  out << std::fixed << std::setprecision(0);
  writeHeaderDetailsLine(out, context);
  writeRunStatistics(out, context);
  writeExecuteAverageStats(out, context);
  writeExecuteOverallStats(out, context);
  writeLibLoadStats(out, context);
}

// The whole event log: version lines, column header, then the rows of INIT, COMPOSE GRAPHS,
// FINALIZE, DE-INIT, EXECUTE, EXECUTE IPS and DLOPEN LATENCY.
bool writeCsvLog(std::ostream& out, const ReportContext& context,
                 CsvExecutionSpill& executionRows) {
  out << std::fixed << std::setprecision(0);
  writeVersionLines(out, context.header);
  writeColumnHeader(out);
  writeInitRows(out, context);
  writeComposeGraphsRow(out, context);
  writeFinalizeRows(out, context);
  writeDeInitRows(out, context);
  if (!executionRows.copyTo(out))
    return false;
  writeExecuteIpsRow(out, context);
  writeDlopenLatencyRow(out, context);
  return true;
}

} // namespace

bool writeCsvOutputs(const std::string& csvPath, const ReportContext& context,
                     CsvExecutionSpill& executionRows, std::ostream& summaryOut) {
  std::ofstream csv;
  if (!csvPath.empty()) {
    // A log whose rows could not all be kept gets no event log at all, not one with gaps.
    if (!executionRows.flush()) {
      logMessage(logError, "%s; no csvfile written: [%s]", executionRows.failure().c_str(),
                 csvPath.c_str());
      return false;
    }
    csv.open(csvPath, std::ios::out | std::ios::trunc);
    if (!csv.is_open()) {
      logMessage(logError, "Invalid output csvfile: [%s]", csvPath.c_str());
      return false;
    }
  }

  std::ostringstream summary;
  writeFullSummary(summary, context);
  if (csv.is_open() && !writeCsvLog(csv, context, executionRows)) {
    logMessage(logError, "%s; csvfile incomplete: [%s]", executionRows.failure().c_str(),
               csvPath.c_str());
    return false;
  }
  summaryOut << summary.str() << std::flush;
  return true;
}

} // namespace kvt::profiling
