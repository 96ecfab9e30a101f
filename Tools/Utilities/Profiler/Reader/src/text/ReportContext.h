// What the text outputs read: the event model, the saved header and the reader's own back-end
// writers, which a reader variant may replace.
#pragma once

#include "log/LogHeaderDetails.h"
#include "model/EventModel.h"

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

namespace kvt::profiling {

// Appends the back-end figures of one method's events beneath a summary section.
using BackendReportWriter = std::function<void(std::ostream& out, const EventList& events)>;
// Appends the back-end rows of one method occurrence to the CSV event log.
using BackendCsvWriter =
    std::function<void(std::ostream& out, const EventList& events, uint64_t messageTimestamp,
                       const std::string& methodName)>;

struct ReportContext {
  const EventModel& model;
  const LogHeaderDetails& header;
  std::string headerDetails; // the header as text, empty when none was saved
  BackendReportWriter writeBackendReport;
  BackendCsvWriter writeBackendCsvRows;
};

} // namespace kvt::profiling
