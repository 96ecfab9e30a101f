// The pass attaches only its own consumer to the dispatch: the model the dispatch files the
// other messages into is thrown away, and no execution is kept or averaged.
#include "StatisticsPass.h"

#include "ReadThreads.h"
#include "StatisticsCollector.h"
#include "log/ParseDriver.h"
#include "model/MethodDispatch.h"

namespace kvt::profiling {

LogReadResult readRunStatistics(const std::string& path, const StatisticsOptions& options,
                                RunStatistics& run) {
  StatisticsCollector collector(options.skipFirst, options.graph, options.orderedSeries);
  const ExecutionConsumers consumers{
      [&collector](const DispatchedExecution& execution) { collector.add(execution); }};
  EventModel model;
  FlatBufferReaderUtil streamReader;
  std::optional<uint64_t> createdUs;
  LogReadResult result = readLogChunks(
      path, streamReader,
      [&] {
        if (!createdUs && streamReader.header())
          createdUs = streamReader.header()->epoch_timestamp_us();
        while (const schema::Message* message = streamReader.nextMessage())
          dispatchMessage(model, consumers, options.visibilityLevel, *message);
      },
      withReadAhead({.wholeChunksOnly = true}));
  if (!result.stands(options.partial))
    return result;
  run = std::move(collector).take();
  run.createdUs = createdUs;
  if (!result.complete())
    run.partial = result;
  return result;
}

} // namespace kvt::profiling
