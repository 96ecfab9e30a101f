// The functions a reader library exports under plain names: a host finds them at run time
// (dlsym / GetProcAddress) and reaches everything else through the reader object.
#pragma once

#include "IKvtProfileLogReader.h"
#include "Logging.h"
#include "VisibilityLevel.h"

#include <cstdint>
#include <string>

#if defined(_WIN32)
#if defined(KVT_BUILDING_READER)
#define KVT_READER_API __declspec(dllexport)
#else
#define KVT_READER_API __declspec(dllimport)
#endif
#else
#define KVT_READER_API __attribute__((visibility("default")))
#endif

using KvtReader = kvt::profiling::IKvtProfileLogReader<kvt::profiling::VisibilityLevel>;

extern "C" {

// A new reader for the log at logPath that keeps messages below visibilityLevel. Parsing and
// its failures happen later, in parseLog. The caller owns the reader and frees it with
// deleteReader. Throws std::bad_alloc when memory is exhausted.
KVT_READER_API KvtReader* createReader(const std::string& logPath,
                                       kvt::profiling::VisibilityLevel visibilityLevel);

// Destroys a reader made by createReader of the same library; null is ignored.
KVT_READER_API void deleteReader(KvtReader* reader);

// Registers the logger that receives this library's diagnostics: reports of level maxLevel and
// more severe (lower numbers) reach callback, with timestamps in nanoseconds since the Unix epoch
// minus timeBase. Replaces an earlier registration; callable from any thread.
KVT_READER_API void registerLogger(kvt::profiling::LoggerCallback callback, int32_t maxLevel,
                                   uint64_t timeBase);

// Removes the registered logger; later diagnostics are dropped.
KVT_READER_API void unregisterLogger();

} // extern "C"

using CreateReaderFunction = decltype(&createReader);
using DeleteReaderFunction = decltype(&deleteReader);
using RegisterLoggerFunction = decltype(&registerLogger);
using UnregisterLoggerFunction = decltype(&unregisterLogger);
