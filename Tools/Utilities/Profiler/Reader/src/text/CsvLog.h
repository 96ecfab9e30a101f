// The base reader's outputs: the CSV event log and the full statistics summary.
#pragma once

#include "ReportContext.h"

#include <string>

namespace kvt::profiling {

// Writes the CSV event log to csvPath (none when it is empty) and then prints the full summary.
// False, printing nothing, when the file cannot be opened ("Invalid output csvfile: [%s]").
bool writeCsvOutputs(const std::string& csvPath, const ReportContext& context);

// The base back-end rows of one method occurrence: ROOT rows and SUB-EVENT rows, objects left out.
void writeBackendCsvRows(std::ostream& out, const EventList& events, uint64_t messageTimestamp,
                         const std::string& methodName);

} // namespace kvt::profiling
