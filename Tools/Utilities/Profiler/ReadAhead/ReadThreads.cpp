// The setting is read when a log is opened, so that a test or a benchmark may change it
// between reads.
#include "ReadThreads.h"

#include "ReadAheadStream.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <thread>

namespace kvt::profiling {

namespace {

constexpr const char* threadsVariable = "KVT_PROFILER_THREADS";
constexpr unsigned maxWindowChunks = 8; // steps read ahead at most, whatever the threads

std::string variableText() {
  const char* text = std::getenv(threadsVariable);
  return text ? text : "";
}

} // namespace

unsigned hardwareThreads() {
  return std::max(std::thread::hardware_concurrency(), 1u);
}

std::optional<unsigned> readThreadsSetting() {
  const std::string text = variableText();
  if (text.empty())
    return 1;
  unsigned threads = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), threads);
  if (error != std::errc() || end != text.data() + text.size() || threads < 1 ||
      threads > maxReadThreads)
    return std::nullopt;
  return threads;
}

std::string describeBadReadThreads() {
  return std::string(threadsVariable) + " must be a whole number from 1 to " +
         std::to_string(maxReadThreads) + ", not \"" + variableText() + "\"";
}

LogReadOptions withReadAhead(LogReadOptions options) {
  return withReadAhead(std::move(options), readThreadsSetting().value_or(1));
}

LogReadOptions withReadAhead(LogReadOptions options, unsigned threads) {
  if (threads <= 1)
    return options;
  options.openStream = [helpers = threads - 1](LogChunkReader& file,
                                               bool wholeOnly) -> std::unique_ptr<ChunkStream> {
    // A step ahead for each helper to verify, and one more for the caller's own read.
    ReadAheadWindow window;
    window.chunks = std::min(helpers + 1, maxWindowChunks);
    return std::make_unique<ReadAheadStream>(file, wholeOnly, helpers, window);
  };
  return options;
}

} // namespace kvt::profiling
