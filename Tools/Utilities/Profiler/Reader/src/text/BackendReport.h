// The base reader's back-end report beneath each summary section, and object dump files.
#pragma once

#include "model/EventRecord.h"

#include <ostream>

namespace kvt::profiling {

// One line per event and per sub-event; OBJECT events print no line and, when dumpObjects is
// set, write their bytes to files named by their message.
void writeBackendReportLines(std::ostream& out, const EventList& events, bool dumpObjects);

// Writes event.bytes to the first free name of event.message, name, name_1, name_2, ...
// (the counter goes before the last "."); reports "Invalid output fileName: [%s]" on failure.
void dumpObjectEvent(const EventRecord& event);

} // namespace kvt::profiling
