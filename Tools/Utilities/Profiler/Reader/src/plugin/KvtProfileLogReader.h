// The base reader: parses a profiling log into an event model and writes the CSV event log with
// the full statistics summary.
#pragma once

#include "IKvtProfileLogReader.h"
#include "VisibilityLevel.h"
#include "log/FlatBufferReaderUtil.h"
#include "log/LogHeaderDetails.h"
#include "model/EventModel.h"
#include "model/ExecutionSeam.h"
#include "text/CsvExecutionSpill.h"
#include "text/ReportContext.h"

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

namespace kvt::profiling {

class KvtProfileLogReader : public IKvtProfileLogReader<VisibilityLevel> {
public:
  // Keeps the messages of the log at logPath whose level is below visibilityLevel. Nothing is
  // read until parseLog.
  KvtProfileLogReader(const std::string& logPath, VisibilityLevel visibilityLevel);

  // The virtual operations, in their fixed slot order.

  // Writes the CSV event log to outputPath (none when empty) and prints the full summary; false,
  // printing nothing, when the file cannot be opened.
  bool writeOutputs(const std::string& outputPath) override;
  ~KvtProfileLogReader() override;
  std::string printHeaderDetails() override;
  bool readNextMessage() override;
  // Reads the whole log, then computes the derived values and prints their warnings. False when
  // the file cannot be opened or a chunk is invalid; what earlier chunks gave stays.
  virtual bool parseLog(bool extendedBackendReport);
  virtual bool isReady();
  // Appends the back-end figures of events beneath a summary section; level is the nesting
  // depth, 0 at the top call.
  virtual void writeBackendReport(std::ostream& out, const EventList& events, unsigned level);
  // Appends the back-end rows of one method occurrence to the CSV event log.
  virtual void writeBackendCsvRows(std::ostream& out, const EventList& events,
                                   uint64_t messageTimestamp, const std::string& methodName);

  // Where parseLog and writeOutputs print from now on: the process's standard output unless
  // told otherwise. Not a virtual operation, so the interface's slots stay as they are; out must
  // outlive the reader's printing.
  void printTo(std::ostream& out) { printed = &out; }

  // Hands every execution of later parses to consumer too, after the reader's own consumers.
  void addExecutionConsumer(ExecutionConsumer consumer);

  const EventModel& eventModel() const { return model; }
  const LogHeaderDetails& headerDetails() const { return header; }

protected:
  // For a reader variant without the CSV event log: executions are only averaged.
  struct WithoutCsvLog {};
  KvtProfileLogReader(const std::string& logPath, VisibilityLevel visibilityLevel, WithoutCsvLog);

  // The model, header and back-end writers of this object, for the text outputs.
  ReportContext reportContext();

  VisibilityLevel visibilityLevel;
  bool endOfMessages = false;
  FlatBufferReaderUtil streamReader;
  EventModel model;
  std::string logPath;
  LogHeaderDetails header;
  bool extendedBackendReport = false;
  ExecutionConsumers executionConsumers;
  std::optional<CsvExecutionSpill> csvExecutionRows; // absent without the CSV event log
  std::ostream* printed;                             // never null; the standard output by default

private:
  void saveHeader();
};

} // namespace kvt::profiling
