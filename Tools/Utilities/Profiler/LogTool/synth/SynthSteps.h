// The execution steps of a synthesised run: names that stay with a step from one execution to the
// next, and figures that vary around the step's own base values.
#pragma once

#include "SynthFigures.h"
#include "SynthNoise.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace kvt::profiling {

// At most this many background items run during one wait or one execution.
inline constexpr uint32_t maxStepItems = 3;

struct StepFigures {
  uint64_t waitUs = 0; // 0 for a step that starts at once
  uint64_t executionUs = 0;
  uint64_t waitBackgroundUs = 0;
  uint64_t executionBackgroundUs = 0;
  uint64_t resourceMask = 0; // bits 0 to 2, never 0
  uint32_t waitItems = 0;    // background items during the wait, none without a wait
  uint32_t executionItems = 0;
  uint64_t firstItemName = 0; // the items' names follow on from this one
};

// What the figures of a step are drawn from and scaled by.
struct StepDraws {
  const FigureSource& model; // the step's base values and shape
  const FigureSource& noise; // their variation from one execution to the next
  SynthNoise noiseKind = SynthNoise::mild;
  uint64_t executions = 0; // of each graph
  double runFactor = 1;    // of every duration
};

// The figures of one step in one execution; its span also times spanFactor. The background work
// follows the wait and the span it runs in.
StepFigures drawStepFigures(const StepDraws& draws, uint32_t graph, uint32_t step,
                            uint64_t execution, double spanFactor);

// The names of the background items of a step, in the order the step lists them.
std::string_view waitItemName(const StepFigures& step, uint32_t item);
std::string_view executionItemName(const StepFigures& step, uint32_t item);

// "Conv2D_12": the operator a step runs, numbered by its place in the graph. The model's figures
// name it.
class StepName {
public:
  StepName(const FigureSource& figures, uint32_t graph, uint32_t step);
  std::string_view view() const { return {text.data(), length}; }

private:
  std::array<char, 32> text{};
  size_t length = 0;
};

// Whether a step of one of the graphs, each of steps steps, is called name.
bool hasStepNamed(const FigureSource& model, uint32_t graphs, uint32_t steps,
                  std::string_view name);

} // namespace kvt::profiling
