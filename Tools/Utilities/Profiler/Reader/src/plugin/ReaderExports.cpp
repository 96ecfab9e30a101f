// The exports every reader library shares: deletion and logger registration.
#include "ReaderExports.h"

extern "C" {

KVT_READER_API void deleteReader(KvtReader* reader) {
  delete reader;
}

KVT_READER_API void registerLogger(kvt::profiling::LoggerCallback callback, int32_t maxLevel,
                                   uint64_t timeBase) {
  using namespace kvt::profiling;
  auto logger = std::make_shared<Logger>();
  logger->callback = callback;
  logger->maxLevel = maxLevel;
  logger->timeBase = timeBase;
  loggerRegistry().add(loggerHandle, std::move(logger));
}

KVT_READER_API void unregisterLogger() {
  kvt::profiling::loggerRegistry().remove(kvt::profiling::loggerHandle);
}

} // extern "C"
