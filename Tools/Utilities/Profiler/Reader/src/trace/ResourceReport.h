// The trace reader's back-end report: detailed step records printed readably, with the
// resources of a step by name.
#pragma once

#include "model/EventRecord.h"

#include <cstdint>
#include <ostream>
#include <string>

namespace kvt::profiling {

// The resources set in mask, joined by ", ": bit 0 "PXA", bit 1 "PXB", bit 2 "DMA"; other bits
// are ignored. resourceText(6) == "PXB, DMA"; resourceText(0) == "".
std::string resourceText(uint8_t mask);

// One line per record, indented by (level + 1) * 4 blanks, "Backend (name)" at level 0 and the
// name alone below. Background items print their name only, a resource mask its resource text,
// other records the value, a blank and the unit suffix ("1250  us"), in fixed notation with
// precision 2, which stays on out. Records of types 9000 to 9009 are hidden with their subtree.
void writeTraceBackendReport(std::ostream& out, const EventList& events, unsigned level);

} // namespace kvt::profiling
