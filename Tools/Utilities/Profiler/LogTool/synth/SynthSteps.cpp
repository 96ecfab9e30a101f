// A step keeps its operator, resources and background items in every execution; its durations
// vary by a few tens of percent, as measured durations do.
#include "SynthSteps.h"

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

StepFigures drawStepFigures(const FigureSource& figures, uint32_t graph, uint32_t step,
                            uint64_t execution) {
  auto vary = [&](uint64_t base, uint64_t key, uint64_t lowPercent, uint64_t highPercent) {
    return base *
           figures.draw({purposeStepVariation, graph, step, execution, key}, lowPercent,
                        highPercent) /
           100;
  };
  StepFigures result;
  result.executionUs = vary(figures.draw({purposeStepBase, graph, step}, 20, 1500), 1, 90, 110);
  if (figures.draw({purposeStepWaitBase, graph, step, 1}, 0, 3) != 0) { // three steps in four
    result.waitUs = vary(figures.draw({purposeStepWaitBase, graph, step, 2}, 5, 150), 2, 70, 130);
    result.waitBackgroundUs = vary(result.waitUs, 3, 10, 80);
    result.waitItems = uint32_t(figures.draw({purposeStepShape, graph, step, 1}, 1, maxWaitItems));
  }
  result.executionBackgroundUs = vary(result.executionUs, 4, 20, 90);
  result.executionItems =
      uint32_t(figures.draw({purposeStepShape, graph, step, 2}, 1, maxStepItems));
  result.resourceMask = figures.draw({purposeStepShape, graph, step, 3}, 1, 7);
  result.firstItemName = figures.draw({purposeStepShape, graph, step, 4}, 0, 63);
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

} // namespace kvt::profiling
