// The factory of the CSV reader library.
#include "KvtProfileLogReader.h"
#include "ReaderExports.h"

extern "C" {

KVT_READER_API KvtReader* createReader(const std::string& logPath,
                                       kvt::profiling::VisibilityLevel visibilityLevel) {
  return new kvt::profiling::KvtProfileLogReader(logPath, visibilityLevel);
}

} // extern "C"
