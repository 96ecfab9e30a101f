// The rows of the CSV event log. Fields are joined by "," without quoting: a comma inside a
// name or an identifier is written as it is.
#include "CsvRows.h"

#include "CsvLog.h"
#include "HeaderDetails.h"
#include "OverallFigures.h"
#include "Units.h"

#include <charconv>
#include <iomanip>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace kvt::profiling {
namespace {

// The columns after the time of a row that the host tool timed itself.
void endNetRunRow(std::ostream& out, std::string_view unit, std::string_view identifier) {
  out << ',' << unit << ",NETRUN,ROOT," << identifier << std::endl;
}

void writeDurationRow(std::ostream& out, uint64_t timestamp, std::string_view method,
                      uint64_t durationUs, std::string_view identifier) {
  out << timestamp << ',' << method << ',' << durationUs;
  endNetRunRow(out, "US", identifier);
}

// A back-end row is assembled in row and written in one piece: a log has millions of them, and
// each insertion into a stream costs more than the few bytes it adds.
void writeBackendRow(std::ostream& out, std::string& row, uint64_t messageTimestamp,
                     const std::string& methodName, const EventRecord& event,
                     std::string_view eventLevel) {
  char timestamp[std::numeric_limits<uint64_t>::digits10 + 1];
  const char* timestampEnd =
      std::to_chars(std::begin(timestamp), std::end(timestamp), messageTimestamp).ptr;
  row.assign(timestamp, size_t(timestampEnd - timestamp));
  row += ',';
  row += methodName;
  row += ',';
  row += formatValue(event.value.dataType, event.value.payload);
  row += ',';
  row += unitName(event.unit);
  row += ",BACKEND,";
  row += eventLevel;
  row += ',';
  row += event.identifier;
  row += '\n';
  out.write(row.data(), std::streamsize(row.size()));
  out.flush();
}

} // namespace

namespace text_internal {

std::string graphIdentifier(size_t graphNumber, std::string_view graphName) {
  return "Graph " + std::to_string(graphNumber) + ": " + std::string(graphName);
}

void writeVersionLines(std::ostream& out, const LogHeaderDetails& header) {
  out << "kvt-profile-viewer version, " << readerVersion << std::endl;
  out << "kvt-net-run version, " << header.netRunVersion << std::endl;
  out << "Backend version, " << header.backendVersion << std::endl;
}

void writeColumnHeader(std::ostream& out) {
  out << "Msg Timestamp, Message, Time, Unit of Measurement, Timing Source, Event Level, "
         "Event Identifier"
      << std::endl;
}

void writeInitRows(std::ostream& out, const ReportContext& context) {
  const EventModel& model = context.model;
  writeDurationRow(out, model.initTiming.timestamp, "INIT", model.initTiming.duration, "null");
  // The init slot's presence enables the rows, but they list initEvents all the same.
  if (model.hasInitEvents || model.initSlot.present)
    context.writeBackendCsvRows(out, model.initEvents, model.initTiming.timestamp, "INIT");
}

void writeComposeGraphsRow(std::ostream& out, const ReportContext& context) {
  const TimingPair& compose = context.model.composeGraphsTiming;
  writeDurationRow(out, compose.timestamp, "COMPOSE GRAPHS", compose.duration, "null");
}

void writeFinalizeRows(std::ostream& out, const ReportContext& context) {
  size_t graphNumber = 0;
  for (const auto& [graphName, entry] : context.model.finalizeByGraph) {
    writeDurationRow(out, entry.timestamp, "FINALIZE", entry.duration,
                     graphIdentifier(graphNumber++, graphName));
    if (context.model.hasFinalizeEvents)
      context.writeBackendCsvRows(out, entry.events, entry.timestamp, "FINALIZE");
  }
}

void writeDeInitRows(std::ostream& out, const ReportContext& context) {
  const RunLevelSlot& deinit = context.model.deinitSlot;
  writeDurationRow(out, deinit.timestamp, "DE-INIT", deinit.duration, "null");
  context.writeBackendCsvRows(out, deinit.events, deinit.timestamp, "DE-INIT");
}

void writeExecutionRows(std::ostream& out, std::string_view graphIdentifier,
                        const ExecutionEntry& execution, const BackendCsvWriter& writeBackendRows) {
  writeDurationRow(out, execution.timestamp, "EXECUTE", execution.duration, graphIdentifier);
  writeBackendRows(out, execution.events, execution.timestamp, "EXECUTE");
}

void writeExecuteIpsRow(std::ostream& out, const ReportContext& context) {
  const RunLevelSlot& overall = context.model.executeOverallSlot;
  const std::optional<float> rate = inferencesPerSecond(overall);
  if (!rate)
    return;
  out << std::fixed << std::setprecision(6);
  out << overall.timestamp << ",EXECUTE IPS," << *rate;
  endNetRunRow(out, "INF/SEC", "null");
}

void writeDlopenLatencyRow(std::ostream& out, const ReportContext& context) {
  const RunLevelSlot& libLoad = context.model.libLoadSlot;
  if (const std::optional<uint64_t> latencyUs = backendLatencyUs(libLoad))
    writeDurationRow(out, libLoad.timestamp, "DLOPEN LATENCY", *latencyUs, "null");
}

} // namespace text_internal

void writeBackendCsvRows(std::ostream& out, const EventList& events, uint64_t messageTimestamp,
                         const std::string& methodName) {
  // Objects are left out at both levels, yet the sub-events of an object still get rows.
  std::string row;
  for (const EventRecord& event : events) {
    if (event.unit != unitObject)
      writeBackendRow(out, row, messageTimestamp, methodName, event, "ROOT");
    for (const EventRecord& subEvent : event.children)
      if (subEvent.unit != unitObject)
        writeBackendRow(out, row, messageTimestamp, methodName, subEvent, "SUB-EVENT");
  }
}

} // namespace kvt::profiling
