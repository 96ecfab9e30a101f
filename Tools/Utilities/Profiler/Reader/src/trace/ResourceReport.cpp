// The trace reader's back-end report.
#include "ResourceReport.h"

#include "log/LogCodes.h"
#include "text/Units.h"

#include <iomanip>

namespace kvt::profiling {

namespace {

constexpr const char* resourceNames[] = {"PXA", "PXB", "DMA"}; // by bit, from bit 0

bool isHidden(uint32_t eventType) {
  return eventType >= firstHiddenEventType && eventType <= lastHiddenEventType;
}

} // namespace

std::string resourceText(uint8_t mask) {
  std::string text;
  for (unsigned bit = 0; bit < std::size(resourceNames); ++bit) {
    if (!(mask & (1u << bit)))
      continue;
    if (!text.empty())
      text += ", ";
    text += resourceNames[bit];
  }
  return text;
}

void writeTraceBackendReport(std::ostream& out, const EventList& events, unsigned level) {
  for (const EventRecord& record : events) {
    if (isHidden(record.eventType))
      continue;
    out << std::string(size_t(level + 1) * 4, ' ');
    if (level == 0)
      out << "Backend (" << record.identifier << ")";
    else
      out << record.identifier;
    const bool isItem =
        record.eventType == executionBackgroundItem || record.eventType == waitBackgroundItem;
    if (record.eventType == resourceMask) {
      out << ": " << resourceText(uint8_t(record.value.payload));
    } else if (!isItem) {
      // The suffix brings its own blank, so value and unit stand two blanks apart.
      out << ": " << std::fixed << std::setprecision(2) << record.value.payload << " "
          << unitSuffix(record.unit);
    }
    out << std::endl;
    if (!record.children.empty())
      writeTraceBackendReport(out, record.children, level + 1);
  }
}

} // namespace kvt::profiling
