// The rows of the CSV event log, one writer per method. Every line ends with a newline and a
// flush; the back-end rows go through context.writeBackendCsvRows, which a reader may replace.
#pragma once

#include "ReportContext.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace kvt::profiling::text_internal {

// "kvt-profile-viewer version, v3...", then the net-run and back-end versions of the header.
void writeVersionLines(std::ostream& out, const LogHeaderDetails& header);
// The column names, separated by a comma and a blank unlike the data rows.
void writeColumnHeader(std::ostream& out);

// The data rows: timestamp, method, time, unit, timing source, event level, event identifier.

// "1000,INIT,5230,US,NETRUN,ROOT,null", then the back-end rows of initEvents when
// hasInitEvents or initSlot.present is set.
void writeInitRows(std::ostream& out, const ReportContext& context);
void writeComposeGraphsRow(std::ostream& out, const ReportContext& context);
// One row per graph, numbered from 0 in map order: "9000,FINALIZE,20110,US,NETRUN,ROOT,Graph 0: g",
// each followed by its back-end rows when hasFinalizeEvents is set.
void writeFinalizeRows(std::ostream& out, const ReportContext& context);
// The de-init row and its back-end rows.
void writeDeInitRows(std::ostream& out, const ReportContext& context);
// The last column of a graph's rows: "Graph 0: g".
std::string graphIdentifier(size_t graphNumber, std::string_view graphName);
// One execution's row, "31000,EXECUTE,1450,US,NETRUN,ROOT,Graph 0: g", then its back-end rows.
void writeExecutionRows(std::ostream& out, std::string_view graphIdentifier,
                        const ExecutionEntry& execution, const BackendCsvWriter& writeBackendRows);
// The overall rate with six decimals: "50000,EXECUTE IPS,689.655151,INF/SEC,NETRUN,ROOT,null";
// nothing when the record has no rate. Leaves out in fixed notation with precision 6.
void writeExecuteIpsRow(std::ostream& out, const ReportContext& context);
// "500,DLOPEN LATENCY,3120,US,NETRUN,ROOT,null"; nothing when the record has no latency.
void writeDlopenLatencyRow(std::ostream& out, const ReportContext& context);

} // namespace kvt::profiling::text_internal
