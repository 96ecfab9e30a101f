// A step keeps its operator, resources and background items in every execution; its durations
// vary by a few tens of percent, as measured durations do.
#include "SynthSteps.h"

#include "SynthScales.h"

#include <algorithm>
#include <charconv>

namespace kvt::profiling {

namespace {

constexpr std::array<std::string_view, 16> operatorKinds = {
    "Conv2D",         "DepthwiseConv2D", "FullyConnected", "Add",      "Mul",   "MaxPool2D",
    "AveragePool2D",  "Concatenation",   "Reshape",        "Softmax",  "Relu6", "Pad",
    "ResizeBilinear", "BatchMatMul",     "Transpose",      "LayerNorm"};
constexpr std::array<std::string_view, 6> executionItemNames = {
    "weight prefetch", "output writeback", "descriptor setup",
    "cache flush",     "activation spill", "constant upload"};
constexpr std::array<std::string_view, 4> waitItemNames = {"input copy", "queue sync",
                                                           "buffer upload", "fence wait"};
constexpr uint32_t maxWaitItems = 2; // a wait is short; an execution may have maxStepItems

} // namespace

StepFigures drawStepFigures(const StepDraws& draws, uint32_t graph, uint32_t step,
                            uint64_t execution, double spanFactor) {
  const FigureSource& model = draws.model;
  auto vary = [&](uint64_t base, uint64_t key, uint64_t lowPercent, uint64_t highPercent) {
    return base *
           draws.noise.draw({purposeStepVariation, graph, step, execution, key}, lowPercent,
                            highPercent) /
           100;
  };
  // Heavy noise replaces the even spread of a duration, not that of the background's share.
  auto varyDuration = [&](uint64_t base, uint64_t key, uint64_t lowPercent, uint64_t highPercent) {
    if (draws.noiseKind == SynthNoise::mild)
      return vary(base, key, lowPercent, highPercent);
    return scaleUs(base,
                   drawHeavyNoise(draws.noise, {graph, step, execution, draws.executions, key}));
  };
  StepFigures result;
  result.executionUs =
      scaleUs(varyDuration(model.draw({purposeStepBase, graph, step}, 20, 1500), 1, 90, 110),
              draws.runFactor * spanFactor);
  if (model.draw({purposeStepWaitBase, graph, step, 1}, 0, 3) != 0) { // three steps in four
    result.waitUs =
        scaleUs(varyDuration(model.draw({purposeStepWaitBase, graph, step, 2}, 5, 150), 2, 70, 130),
                draws.runFactor);
    result.waitBackgroundUs = vary(result.waitUs, 3, 10, 80);
    result.waitItems = uint32_t(model.draw({purposeStepShape, graph, step, 1}, 1, maxWaitItems));
  }
  result.executionBackgroundUs = vary(result.executionUs, 4, 20, 90);
  result.executionItems = uint32_t(model.draw({purposeStepShape, graph, step, 2}, 1, maxStepItems));
  result.resourceMask = model.draw({purposeStepShape, graph, step, 3}, 1, 7);
  result.firstItemName = model.draw({purposeStepShape, graph, step, 4}, 0, 63);
  return result;
}

std::string_view waitItemName(const StepFigures& step, uint32_t item) {
  return waitItemNames[(step.firstItemName + item) % waitItemNames.size()];
}

std::string_view executionItemName(const StepFigures& step, uint32_t item) {
  return executionItemNames[(step.firstItemName + item) % executionItemNames.size()];
}

StepName::StepName(const FigureSource& figures, uint32_t graph, uint32_t step) {
  const std::string_view kind =
      operatorKinds[figures.draw({purposeStepShape, graph, step, 5}, 0, operatorKinds.size() - 1)];
  char* end = std::copy(kind.begin(), kind.end(), text.data());
  *end++ = '_';
  length = size_t(std::to_chars(end, text.data() + text.size(), step).ptr - text.data());
}

bool hasStepNamed(const FigureSource& model, uint32_t graphs, uint32_t steps,
                  std::string_view name) {
  // Only the step whose place ends the name can carry it, in whichever graph.
  const size_t underscore = name.rfind('_');
  uint32_t step = 0;
  if (underscore == std::string_view::npos ||
      std::from_chars(name.data() + underscore + 1, name.data() + name.size(), step).ptr !=
          name.data() + name.size() ||
      step >= steps)
    return false;
  for (uint32_t graph = 0; graph < graphs; ++graph)
    if (StepName(model, graph, step).view() == name)
      return true;
  return false;
}

} // namespace kvt::profiling
