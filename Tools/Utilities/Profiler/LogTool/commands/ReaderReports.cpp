// The reader reports through the process-wide log facility, whose callback carries no context:
// its lines go straight to the standard error.
#include "ReaderReports.h"

#include "plugin/Logging.h"

#include <cstdio>
#include <memory>

namespace kvt::profiling {

namespace {

void printReport(const char* format, uint32_t /*level*/, uint64_t /*timestampNs*/,
                 va_list arguments) {
  std::fputs("kvt-profile-log: error: ", stderr);
  std::vfprintf(stderr, format, arguments);
  std::fputc('\n', stderr);
}

} // namespace

ReaderReports::ReaderReports() {
  auto logger = std::make_shared<Logger>();
  logger->callback = printReport;
  logger->maxLevel = logError;
  loggerRegistry().add(loggerHandle, std::move(logger));
}

ReaderReports::~ReaderReports() {
  loggerRegistry().remove(loggerHandle);
}

} // namespace kvt::profiling
