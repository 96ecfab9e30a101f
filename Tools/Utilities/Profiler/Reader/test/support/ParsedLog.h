// Parses a log with a real reader for tests of the event model, keeping what the parse printed.
#pragma once

#include "log/LogWriter.h"
#include "plugin/KvtProfileLogReader.h"
#include "support/CollectedExecutions.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"

#include <memory>
#include <span>
#include <string>

namespace kvt::profiling::testing {

struct ParsedLog {
  std::unique_ptr<KvtProfileLogReader> reader;
  std::unique_ptr<CollectedExecutions> executions = std::make_unique<CollectedExecutions>();
  bool parsed = false; // the result of parseLog
  std::string printed; // what parseLog wrote on the standard output
};

// Creates a reader for the log at path and parses it, collecting every execution.
inline ParsedLog parseLogFile(const std::string& path,
                              VisibilityLevel visibilityLevel = VisibilityLevel{1}) {
  ParsedLog log;
  log.reader = std::make_unique<KvtProfileLogReader>(path, visibilityLevel);
  log.reader->addExecutionConsumer(log.executions->consumer());
  const StdoutCapture captured;
  log.parsed = log.reader->parseLog(false);
  log.printed = captured.text();
  return log;
}

// Writes the chunks as a log file and parses it.
inline ParsedLog parseChunks(std::span<const ChunkSpec> chunks,
                             VisibilityLevel visibilityLevel = VisibilityLevel{1}) {
  const TempDir dir;
  return parseLogFile(dir.write("profile.log", buildLog(chunks)), visibilityLevel);
}

// Writes the messages as a one-chunk log and parses it.
inline ParsedLog parseMessages(std::vector<MessageSpec> messages,
                               VisibilityLevel visibilityLevel = VisibilityLevel{1}) {
  ChunkSpec chunk;
  chunk.messages = std::move(messages);
  return parseChunks(std::span(&chunk, 1), visibilityLevel);
}

} // namespace kvt::profiling::testing
