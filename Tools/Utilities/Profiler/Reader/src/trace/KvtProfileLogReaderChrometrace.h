// The trace reader: writes the averaged executions as a Chrome Trace Event Format file and
// prints the run and execute statistics with its own back-end report.
#pragma once

#include "plugin/KvtProfileLogReader.h"

namespace kvt::profiling {

class KvtProfileLogReaderChrometrace : public KvtProfileLogReader {
public:
  // As the base reader, but executions are only folded into their averages, which is all the
  // trace and the statistics read of them.
  KvtProfileLogReaderChrometrace(const std::string& logPath, VisibilityLevel visibilityLevel);

  // Writes the trace to outputPath, then prints the statistics. False when the name is empty,
  // the file cannot be opened, or the log lacks the detailed sub-events the trace needs.
  bool writeOutputs(const std::string& outputPath) override;
  ~KvtProfileLogReaderChrometrace() override;
  // Names background items, lists resources and hides internal records; never dumps objects.
  void writeBackendReport(std::ostream& out, const EventList& events, unsigned level) override;
};

} // namespace kvt::profiling
