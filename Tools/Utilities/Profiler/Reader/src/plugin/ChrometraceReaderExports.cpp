// The factory of the trace reader library.
#include "ReaderExports.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

extern "C" {

KVT_READER_API KvtReader* createReader(const std::string& logPath,
                                       kvt::profiling::VisibilityLevel visibilityLevel) {
  return new kvt::profiling::KvtProfileLogReaderChrometrace(logPath, visibilityLevel);
}

} // extern "C"
