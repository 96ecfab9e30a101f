// The base reader's operations: parsing, header text and the CSV outputs.
#include "KvtProfileLogReader.h"

#include "Logging.h"
#include "log/ParseDriver.h"
#include "model/DerivedValues.h"
#include "model/MethodDispatch.h"
#include "text/BackendReport.h"
#include "text/CsvLog.h"
#include "text/HeaderDetails.h"

#include <iomanip>
#include <iostream>
#include <sstream>

namespace kvt::profiling {

KvtProfileLogReader::KvtProfileLogReader(const std::string& logPath,
                                         VisibilityLevel visibilityLevel)
    : KvtProfileLogReader(logPath, visibilityLevel, WithoutCsvLog{}) {
  // Each execution's rows are formatted as it comes; none is kept in memory for the event log.
  csvExecutionRows.emplace(
      [this](std::ostream& out, const EventList& events, uint64_t timestamp,
             const std::string& method) { writeBackendCsvRows(out, events, timestamp, method); });
  addExecutionConsumer(
      [this](const DispatchedExecution& execution) { csvExecutionRows->add(execution); });
}

KvtProfileLogReader::KvtProfileLogReader(const std::string& logPath,
                                         VisibilityLevel visibilityLevel, WithoutCsvLog)
    : visibilityLevel(visibilityLevel), logPath(logPath), printed(&std::cout) {
  addExecutionConsumer([this](const DispatchedExecution& execution) {
    foldIntoRunningAverage(model.runningExecutions, execution);
  });
}

KvtProfileLogReader::~KvtProfileLogReader() = default;

bool KvtProfileLogReader::writeOutputs(const std::string& outputPath) {
  return writeCsvOutputs(outputPath, reportContext(), *csvExecutionRows, *printed);
}

std::string KvtProfileLogReader::printHeaderDetails() {
  return formatHeaderDetails(header);
}

bool KvtProfileLogReader::readNextMessage() {
  if (const schema::Message* message = streamReader.nextMessage())
    return dispatchMessage(model, executionConsumers, visibilityLevel, *message);
  endOfMessages = true;
  logMessage(logVerbose, "profiling::KvtProfileLogReader reached EOF!");
  return false;
}

bool KvtProfileLogReader::parseLog(bool extendedBackendReport) {
  const bool complete = readLogChunks(logPath, streamReader, [this] {
                          if (!header.headerSaved)
                            saveHeader();
                          endOfMessages = false;
                          while (!endOfMessages)
                            readNextMessage();
                        }).complete();
  if (!complete)
    return false;

  this->extendedBackendReport = extendedBackendReport;
  std::ostringstream warnings;
  warnings << std::fixed << std::setprecision(0);
  computeDerivedValues(model, warnings);
  *printed << warnings.str() << std::flush;
  return true;
}

void KvtProfileLogReader::addExecutionConsumer(ExecutionConsumer consumer) {
  executionConsumers.push_back(std::move(consumer));
}

bool KvtProfileLogReader::isReady() {
  return true;
}

void KvtProfileLogReader::writeBackendReport(std::ostream& out, const EventList& events,
                                             unsigned /*level*/) {
  writeBackendReportLines(out, events, extendedBackendReport);
}

void KvtProfileLogReader::writeBackendCsvRows(std::ostream& out, const EventList& events,
                                              uint64_t messageTimestamp,
                                              const std::string& methodName) {
  kvt::profiling::writeBackendCsvRows(out, events, messageTimestamp, methodName);
}

ReportContext KvtProfileLogReader::reportContext() {
  return ReportContext{
      model, header, printHeaderDetails(),
      [this](std::ostream& out, const EventList& events) { writeBackendReport(out, events, 0); },
      [this](std::ostream& out, const EventList& events, uint64_t timestamp,
             const std::string& method) { writeBackendCsvRows(out, events, timestamp, method); }};
}

void KvtProfileLogReader::saveHeader() {
  if (header.headerSaved) {
    logMessage(logVerbose, "Header details have been saved already.");
    return;
  }
  const schema::LogHeader* logHeader = streamReader.header();
  if (!logHeader) {
    logMessage(logVerbose, "hdr is nullptr");
    return;
  }
  copyHeaderDetails(*logHeader, header);
}

} // namespace kvt::profiling
