// The run's story: which messages a run of the host tool records, in which order, with which
// events, on one running clock. The figures come from SynthFigures and SynthSteps, the layout of
// the tables from SynthTables.
#include "LogSynth.h"

#include "ProgressLine.h"
#include "SynthFigures.h"
#include "SynthSteps.h"
#include "SynthTables.h"
#include "document/ChunkOutput.h"

#include <array>
#include <vector>

namespace kvt::profiling {

namespace {

using flatbuffers::FlatBufferBuilder;
using flatbuffers::Offset;

constexpr size_t maxChunkBytes = 64 << 20; // a chunk is closed early once it holds this much
constexpr uint64_t mebibyte = 1 << 20;

// This generator's own event types, beside the ones the reader gives a meaning (LogCodes.h).
enum SynthEventType : uint32_t {
  executeRecord = 400,
  deinitEvent = 500,
  overallEvent = 800,
  libLoadEvent = 1000,
};

enum Unit : uint32_t { unitUs = 1, unitBytes = 2, unitCount = 4 };

class RunSynthesizer {
public:
  RunSynthesizer(const SynthOptions& options, OutputFile& file, ProgressLine& progress)
      : options(options), figures(options.seed),
        noise(options.noiseSeed.value_or(options.seed)), stepDraws{figures, noise, options.noise,
                                                                   options.executions,
                                                                   options.runScale},
        file(file), progress(progress),
        totalMessages(6 + options.graphs + uint64_t(options.graphs) * options.executions) {
    for (uint32_t graph = 0; graph < options.graphs; ++graph)
      graphNames.push_back("graph_" + std::to_string(graph));
    clockUs = draw({purposeClock}, 1000000000, 9000000000);
  }

  // False when a chunk could not be written.
  bool run() {
    if (!addLibLoad() || !addInit() ||
        !addTimingOnly(MethodType::unnamedTiming, drawUs({purposeInit, 9}, 4000, 9000)) ||
        !addTimingOnly(
            MethodType::composeGraphs,
            scaleUs(400 + options.graphs * draw({purposeInit, 10}, 150, 400), options.runScale)))
      return false;
    for (uint32_t graph = 0; graph < options.graphs; ++graph)
      if (!addFinalize(graph))
        return false;
    firstExecutionUs = clockUs;
    for (uint64_t execution = 0; execution < options.executions; ++execution)
      for (uint32_t graph = 0; graph < options.graphs; ++graph)
        if (!addExecution(graph, execution))
          return false;
    return addOverall() && addDeinit() && flushChunk();
  }

private:
  uint64_t draw(std::initializer_list<uint64_t> keys, uint64_t low, uint64_t high) const {
    return figures.draw(keys, low, high);
  }

  // A duration of the model, as long as the run's scale makes it.
  uint64_t drawUs(std::initializer_list<uint64_t> keys, uint64_t low, uint64_t high) const {
    return scaleUs(figures.draw(keys, low, high), options.runScale);
  }

  // A duration that varies from one execution to the next.
  uint64_t drawNoiseUs(std::initializer_list<uint64_t> keys, uint64_t low, uint64_t high) const {
    return scaleUs(noise.draw(keys, low, high), options.runScale);
  }

  // Moves the clock on by a short pause between two phases of the run.
  void pause(uint64_t key) { clockUs += drawUs({purposePhaseGap, key}, 50, 500); }

  bool addLibLoad() {
    openChunk();
    const uint64_t latencyUs = drawUs({purposeLibLoad}, 1800, 4200);
    const SynthMessage message{MethodType::libLoad, clockUs, clockUs + latencyUs, {}};
    const auto table = addMessage(builder, message, [&] {
      const auto event =
          addEvent(builder, {"backend library load", libLoadEvent, latencyUs, unitUs, clockUs});
      return builder.CreateVector(&event, 1);
    });
    clockUs = message.endUs;
    pause(1);
    return commit(table);
  }

  bool addInit() {
    openChunk();
    const uint64_t start = clockUs;
    const uint64_t deviceOpenUs = drawUs({purposeInit, 1}, 300, 900);
    const uint64_t firmwareUs = drawUs({purposeInit, 2}, 1500, 4000);
    const uint64_t backendInitUs = deviceOpenUs + firmwareUs + drawUs({purposeInit, 3}, 100, 400);
    const uint64_t modelLoadUs = drawUs({purposeInit, 4}, 2000, 6000);
    const SynthMessage message{MethodType::init,
                               start,
                               start + backendInitUs + modelLoadUs +
                                   drawUs({purposeInit, 5}, 200, 800),
                               {}};
    const auto table = addMessage(builder, message, [&] {
      const std::array events = {
          addEvent(builder, {"backend init", initEvent, backendInitUs, unitUs, start},
                   [&] {
                     const std::array children = {
                         addEvent(builder, {"device open", initEvent, deviceOpenUs, unitUs, start}),
                         addEvent(builder, {"firmware load", initEvent, firmwareUs, unitUs,
                                            start + deviceOpenUs}),
                         addEvent(builder,
                                  {"scratch memory", initEvent,
                                   draw({purposeInit, 6}, 8, 64) * mebibyte, unitBytes, start})};
                     return builder.CreateVector(children.data(), children.size());
                   }),
          addEvent(builder, {"model load", initEvent, modelLoadUs, unitUs, start + backendInitUs},
                   [&] {
                     const auto child = addEvent(builder, {"model size", initEvent,
                                                           draw({purposeInit, 7}, 2, 40) * mebibyte,
                                                           unitBytes, start + backendInitUs});
                     return builder.CreateVector(&child, 1);
                   })};
      return builder.CreateVector(events.data(), events.size());
    });
    clockUs = message.endUs;
    pause(2);
    return commit(table);
  }

  bool addTimingOnly(MethodType method, uint64_t durationUs) {
    openChunk();
    const SynthMessage message{method, clockUs, clockUs + durationUs, {}};
    const auto table = addMessage(builder, message, [] { return EventVector(); });
    clockUs = message.endUs;
    pause(uint64_t(method));
    return commit(table);
  }

  bool addFinalize(uint32_t graph) {
    openChunk();
    const uint64_t start = clockUs;
    const uint64_t compileUs = drawUs({purposeFinalize, graph, 1}, 5000, 20000);
    const uint64_t weightBytes = draw({purposeFinalize, graph, 2}, 1, 32) * mebibyte;
    const uint64_t uploadUs =
        scaleUs(weightBytes / draw({purposeFinalize, graph, 3}, 800, 1600), options.runScale);
    const uint64_t backendUs = compileUs + uploadUs + drawUs({purposeFinalize, graph, 4}, 100, 500);
    const uint64_t commandBuffers = 1 + options.steps / draw({purposeFinalize, graph, 5}, 2, 8);
    const SynthMessage message{MethodType::finalize, start,
                               start + backendUs + drawUs({purposeFinalize, graph, 6}, 300, 1200),
                               graphNames[graph]};
    const auto table = addMessage(builder, message, [&] {
      const auto event =
          addEvent(builder, {"finalize graph", finalizeEvent, backendUs, unitUs, start}, [&] {
            const std::array children = {
                addEvent(builder, {"compile", finalizeEvent, compileUs, unitUs, start}),
                addEvent(builder,
                         {"weights upload", finalizeEvent, uploadUs, unitUs, start + compileUs}),
                addEvent(builder, {"weights size", finalizeEvent, weightBytes, unitBytes,
                                   start + compileUs}),
                addEvent(builder, {"command buffers", finalizeEvent, commandBuffers, unitCount,
                                   start + compileUs + uploadUs})};
            return builder.CreateVector(children.data(), children.size());
          });
      return builder.CreateVector(&event, 1);
    });
    clockUs = message.endUs;
    pause(100 + graph);
    return commit(table);
  }

  // A step's sub-events: its wait, the background work during the wait and during execution
  // with their items, and the resources it used.
  EventVector addStepDetail(const StepFigures& step, uint64_t waitStartUs) {
    const uint64_t executionStartUs = waitStartUs + step.waitUs;
    auto addItems = [&](auto itemName, uint32_t count, uint32_t eventType, uint64_t totalUs,
                        uint64_t startUs) {
      std::array<Offset<schema::Event>, maxStepItems> items{};
      for (uint32_t i = 0; i < count; ++i)
        items[i] =
            addEvent(builder, {itemName(step, i), eventType, totalUs / count, unitUs, startUs});
      return count ? builder.CreateVector(items.data(), count) : EventVector();
    };
    const std::array detail = {
        addEvent(builder, {"wait", stepWait, step.waitUs, unitUs, waitStartUs}),
        addEvent(builder,
                 {"execution background", executionBackground, step.executionBackgroundUs, unitUs,
                  executionStartUs},
                 [&] {
                   return addItems(executionItemName, step.executionItems, executionBackgroundItem,
                                   step.executionBackgroundUs, executionStartUs);
                 }),
        addEvent(builder,
                 {"wait background", waitBackground, step.waitBackgroundUs, unitUs, waitStartUs},
                 [&] {
                   return addItems(waitItemName, step.waitItems, waitBackgroundItem,
                                   step.waitBackgroundUs, waitStartUs);
                 }),
        addEvent(builder,
                 {"resources", resourceMask, step.resourceMask, unitCount, executionStartUs})};
    return builder.CreateVector(detail.data(), detail.size());
  }

  bool addExecution(uint32_t graph, uint64_t execution) {
    openChunk();
    executionSteps.clear();
    uint64_t stepsUs = 0;
    for (uint32_t step = 0; step < options.steps; ++step) {
      const double spanFactor =
          options.stepScales.empty()
              ? 1
              : findStepFactor(options.stepScales, StepName(figures, graph, step).view());
      executionSteps.push_back(drawStepFigures(stepDraws, graph, step, execution, spanFactor));
      stepsUs += executionSteps.back().waitUs + executionSteps.back().executionUs;
    }
    const uint64_t start = clockUs;
    const uint64_t queueWaitUs =
        options.queueWait ? drawNoiseUs({purposeExecution, graph, execution, 1}, 5, 400) : 0;
    const uint64_t backendStartUs = start + queueWaitUs;
    const SynthMessage message{
        options.queueWait ? MethodType::executeWithQueueWait : MethodType::execute, start,
        backendStartUs + stepsUs + drawNoiseUs({purposeExecution, graph, execution, 2}, 15, 60),
        graphNames[graph]};
    const auto table = addMessage(builder, message, [&] {
      std::array<Offset<schema::Event>, 2> events{};
      size_t eventCount = 0;
      if (options.queueWait)
        events[eventCount++] =
            addEvent(builder, {"queue wait", queueWaitEvent, queueWaitUs, unitUs, start});
      events[eventCount++] =
          addEvent(builder, {"execute", executeRecord, stepsUs, unitUs, backendStartUs}, [&] {
            stepEvents.clear();
            uint64_t stepStartUs = backendStartUs;
            for (uint32_t step = 0; step < options.steps; ++step) {
              const StepFigures& stepFigures = executionSteps[step];
              const StepName name(figures, graph, step);
              const SynthEvent stepEvent{name.view(), executionStep, stepFigures.executionUs,
                                         unitUs, stepStartUs + stepFigures.waitUs};
              stepEvents.push_back(addEvent(builder, stepEvent, [&] {
                return options.detail == SynthDetail::linting
                           ? addStepDetail(stepFigures, stepStartUs)
                           : EventVector();
              }));
              stepStartUs += stepFigures.waitUs + stepFigures.executionUs;
            }
            return builder.CreateVector(stepEvents);
          });
      return builder.CreateVector(events.data(), eventCount);
    });
    clockUs = message.endUs;
    lastExecutionEndUs = clockUs;
    clockUs += drawNoiseUs({purposeExecution, graph, execution, 3}, 20, 250);
    return commit(table);
  }

  bool addOverall() {
    openChunk();
    const uint64_t executedUs = options.executions ? lastExecutionEndUs - firstExecutionUs : 0;
    const uint64_t inferences = options.graphs ? options.executions : 0;
    const SynthMessage message{
        MethodType::executeOverall, firstExecutionUs, firstExecutionUs + executedUs, {}};
    const auto table = addMessage(builder, message, [&] {
      const std::array events = {
          addEvent(builder, {"duration", overallEvent, executedUs, unitUs, firstExecutionUs}),
          addEvent(builder,
                   {"inference count", overallEvent, inferences, unitCount, firstExecutionUs})};
      return builder.CreateVector(events.data(), events.size());
    });
    pause(3);
    return commit(table);
  }

  bool addDeinit() {
    openChunk();
    const uint64_t start = clockUs;
    const uint64_t releaseUs = drawUs({purposeInit, 11}, 300, 1500);
    const SynthMessage message{
        MethodType::deinit, start, start + releaseUs + drawUs({purposeInit, 12}, 100, 400), {}};
    const auto table = addMessage(builder, message, [&] {
      const auto event =
          addEvent(builder, {"backend deinit", deinitEvent, releaseUs, unitUs, start}, [&] {
            const auto child =
                addEvent(builder, {"memory released", deinitEvent,
                                   draw({purposeInit, 13}, 8, 96) * mebibyte, unitBytes, start});
            return builder.CreateVector(&child, 1);
          });
      return builder.CreateVector(&event, 1);
    });
    clockUs = message.endUs;
    return commit(table);
  }

  // Starts a chunk unless one is open; the first chunk carries the header, built before any
  // message as the parser meets it.
  void openChunk() {
    if (chunkOpen)
      return;
    builder.Clear();
    header = {};
    if (file.bytesWritten() == 0)
      header = addHeader(builder, runHeader());
    chunkOpen = true;
  }

  SynthHeader runHeader() const {
    SynthHeader values;
    values.timeScale = 1000.0f;
    values.epochTimestampUs = 1700000000000000u + draw({purposeClock, 1}, 0, 86400 * 365) * 1000000;
    values.steadyClockTimestamp = clockUs;
    values.buildNumbers = {3, 17, 4};
    values.buildFlags = 1;
    values.netRunVersion = "v3.17.4";
    values.backendVersion = "v2.9.1";
    return values;
  }

  bool commit(Offset<schema::Message> message) {
    chunkMessages.push_back(message);
    ++doneMessages;
    const bool full =
        chunkMessages.size() >= options.messagesPerChunk || builder.GetSize() >= maxChunkBytes;
    if (full && !flushChunk())
      return false;
    progress.update({doneMessages, totalMessages, file.bytesWritten()});
    return true;
  }

  bool flushChunk() {
    if (!chunkOpen)
      return true;
    const MessageVector messages = builder.CreateVector(chunkMessages);
    builder.Finish(addProfileLog(builder, header, messages));
    chunkMessages.clear();
    chunkOpen = false;
    return writeChunk(file, {builder.GetBufferPointer(), builder.GetSize()});
  }

  const SynthOptions& options;
  const FigureSource figures;
  const FigureSource noise;
  const StepDraws stepDraws;
  OutputFile& file;
  ProgressLine& progress;
  const uint64_t totalMessages;
  std::vector<std::string> graphNames;
  FlatBufferBuilder builder;
  bool chunkOpen = false;
  Offset<schema::LogHeader> header;
  std::vector<Offset<schema::Message>> chunkMessages;
  std::vector<StepFigures> executionSteps;
  std::vector<Offset<schema::Event>> stepEvents;
  uint64_t clockUs = 0;
  uint64_t doneMessages = 0;
  uint64_t firstExecutionUs = 0;
  uint64_t lastExecutionEndUs = 0;
};

} // namespace

const StepScale* findUnmatchedScale(const SynthOptions& options) {
  const FigureSource model(options.seed);
  for (const StepScale& scale : options.stepScales)
    if (!hasStepNamed(model, options.graphs, options.steps, scale.name))
      return &scale;
  return nullptr;
}

std::optional<std::string> synthLog(const SynthOptions& options, std::ostream& progressOut,
                                    bool showProgress) {
  OutputFile file(options.outputPath);
  bool written = false;
  {
    // The progress line is wiped before the caller prints any message after it.
    ProgressLine progress(progressOut, showProgress, "kvt-profile-log synth");
    written = file.isOpen() && RunSynthesizer(options, file, progress).run() && file.commit();
  }
  if (written)
    return std::nullopt;
  return "cannot write " + options.outputPath + ": " + file.failure();
}

} // namespace kvt::profiling
