// The base reader's outputs: the CSV event log and the full statistics summary.
#pragma once

#include "CsvExecutionSpill.h"
#include "ReportContext.h"

#include <cstdint>
#include <ostream>
#include <string>

namespace kvt::profiling {

// Writes the CSV event log to csvPath (none when it is empty), its EXECUTE rows taken from
// executionRows, then prints the full summary to summaryOut in one piece. False,
// printing nothing, when the file cannot be opened ("Invalid output csvfile: [%s]") or the
// execution rows could not be kept (the spill's failure text); both at the error level.
bool writeCsvOutputs(const std::string& csvPath, const ReportContext& context,
                     CsvExecutionSpill& executionRows, std::ostream& summaryOut);

// The base back-end rows of one method occurrence: a ROOT row per event and a SUB-EVENT row per
// direct sub-event, each with the method's timestamp and name; OBJECT events get no row.
// "31000,EXECUTE,2048,BYTES,BACKEND,SUB-EVENT,scratch memory"
void writeBackendCsvRows(std::ostream& out, const EventList& events, uint64_t messageTimestamp,
                         const std::string& methodName);

} // namespace kvt::profiling
