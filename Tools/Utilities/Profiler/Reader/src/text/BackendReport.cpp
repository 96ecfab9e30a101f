// The base reader's back-end report and object dump files.
#include "BackendReport.h"

#include "Units.h"
#include "plugin/Logging.h"

#include <fstream>
#include <iomanip>

namespace kvt::profiling {

void writeBackendReportLines(std::ostream& out, const EventList& events, bool dumpObjects) {
  for (const EventRecord& event : events) {
    const bool isObject = event.unit == unitObject;
    if (!isObject) {
      out << "    Backend (" << event.identifier << "): " << std::fixed << std::setprecision(0)
          << formatValue(event.value.dataType, event.value.payload) << unitSuffix(event.unit)
          << "\n";
    } else if (dumpObjects) {
      dumpObjectEvent(event);
    }
    for (const EventRecord& child : event.children) {
      // An object's children print nothing; each one dumps the parent once more, so an object
      // with k children leaves 1 + k files behind.
      if (isObject) {
        if (dumpObjects)
          dumpObjectEvent(event);
        continue;
      }
      out << "        " << child.identifier << ": "
          << formatValue(child.value.dataType, child.value.payload) << unitSuffix(child.unit)
          << "\n";
    }
  }
}

namespace {

// Text mode, except where text mode translates line ends: there the object's bytes would not
// come back as they were, so Windows writes them untranslated.
#if defined(_WIN32)
constexpr std::ios::openmode dumpFileMode = std::ios::out | std::ios::trunc | std::ios::binary;
#else
constexpr std::ios::openmode dumpFileMode = std::ios::out | std::ios::trunc;
#endif

} // namespace

void dumpObjectEvent(const EventRecord& event) {
  const std::string& requested = event.message;
  const size_t dot = requested.rfind('.');
  const std::string base = requested.substr(0, dot);
  const std::string extension = dot == std::string::npos ? std::string() : requested.substr(dot);

  // Never overwrite an earlier dump: the counter always goes on the unchanged base.
  std::string name = requested;
  for (uint64_t counter = 1; std::ifstream(name).is_open(); ++counter)
    name = base + "_" + std::to_string(counter) + extension;

  std::ofstream file(name, dumpFileMode);
  if (!file.is_open()) {
    logMessage(logError, "Invalid output fileName: [%s]", name.c_str());
    return;
  }
  for (uint8_t byte : event.bytes)
    file.put(char(byte));
}

} // namespace kvt::profiling
