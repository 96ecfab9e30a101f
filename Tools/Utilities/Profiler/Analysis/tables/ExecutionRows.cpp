// The rows are the series walk's values, one execution at a time.
#include "ExecutionRows.h"

#include "ReadThreads.h"
#include "log/ParseDriver.h"
#include "model/MethodDispatch.h"

namespace kvt::profiling {

LogReadResult readExecutionRows(const std::string& path, const ExecutionRowOptions& options,
                                const ExecutionRowSink& sink) {
  SeriesWalk walk;
  const ExecutionConsumers consumers{[&](const DispatchedExecution& execution) {
    const WalkedExecution walked = walk.walk(execution, options.skipFirst);
    if (walked.execution >= options.skipFirst)
      sink(ExecutionRows{uint32_t(walked.graph), walked.execution, walked.values},
           ExecutionKeys{walk.graphs(), walk.keys()});
  }};
  EventModel model;
  FlatBufferReaderUtil streamReader;
  return readLogChunks(
      path, streamReader,
      [&] {
        while (const schema::Message* message = streamReader.nextMessage())
          dispatchMessage(model, consumers, options.visibilityLevel, *message);
      },
      withReadAhead({.wholeChunksOnly = true}));
}

} // namespace kvt::profiling
