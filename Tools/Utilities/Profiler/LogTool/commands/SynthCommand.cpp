// `kvt-profile-log synth` on the command line.
#include "CommandLine.h"
#include "ToolCommands.h"
#include "synth/LogSynth.h"

#include <memory>

namespace kvt::profiling {

namespace {

// Checks a text with parse, which gives nothing for a text it refuses.
template <typename Parse> CLI::Validator parsedBy(Parse parse, std::string needs) {
  return CLI::Validator(
      [parse, needs](const std::string& text) -> std::string {
        return parse(text) ? "" : "needs " + needs + ", not '" + text + "'";
      },
      "");
}

} // namespace

void addSynthCommand(CLI::App& tool, CommandRun& run) {
  using Limits = SynthLimits;
  CLI::App* command = tool.add_subcommand("synth", "writes a deterministic log of a whole run");
  command->footer(
      "Writes a deterministic log of one run: library load, init, compose, one finalize per\n"
      "graph, the executions of every graph, the overall figures and de-init. Progress is shown\n"
      "on the standard error when it is a terminal and the job takes longer than a second.\n"
      "\n"
      "For calibration: --noise-seed N keeps the model that --seed draws (names, base values,\n"
      "shapes, every phase but the executions) and varies the executions afresh. --scale takes\n"
      "a step's name as the log gives it (Conv2D_3) and scales that step's span in every graph,\n"
      "its background work with it; the executions grow by the difference. A name that no step\n"
      "of the run has ends in exit 2. --run-scale multiplies every duration, as a uniformly\n"
      "slower machine would. A FACTOR is above 0 and up to 1000, e.g. 1.10.");
  const auto options = std::make_shared<SynthOptions>();
  command->add_option("-o", options->outputPath, "the log to write")
      ->required()
      ->option_text("LOG")
      ->check(nonEmpty());
  command->add_option("--graphs", options->graphs, "graphs of the run (default 2)")
      ->option_text("G")
      ->check(wholeNumber<uint32_t>(0, Limits::maxGraphs));
  command->add_option("--executions", options->executions, "executions of each graph (default 10)")
      ->option_text("E")
      ->check(wholeNumber<uint64_t>(0, Limits::maxExecutions));
  command->add_option("--steps", options->steps, "execution steps of each execution (default 8)")
      ->option_text("S")
      ->check(wholeNumber<uint32_t>(0, Limits::maxSteps));
  command
      ->add_option_function<std::string>(
          "--detail",
          [options](const std::string& detail) {
            options->detail = detail == "basic" ? SynthDetail::basic : SynthDetail::linting;
          },
          "linting gives every step its wait, background and resource\n"
          "sub-events, which the trace needs (default linting)")
      ->option_text("linting|basic")
      ->check(CLI::IsMember({"linting", "basic"}));
  command->add_flag("--queue-wait", options->queueWait, "executions record their queue wait");
  command
      ->add_option("--messages-per-chunk", options->messagesPerChunk,
                   "messages of one chunk (default 16)")
      ->option_text("M")
      ->check(wholeNumber<uint32_t>(1, Limits::maxMessagesPerChunk));
  command->add_option("--seed", options->seed, "seed of the figures (default 1)")
      ->option_text("N")
      ->check(wholeNumber<uint64_t>(0, UINT64_MAX));
  command
      ->add_option_function<uint64_t>(
          "--noise-seed", [options](uint64_t seed) { options->noiseSeed = seed; },
          "seed of the variation from one execution to the\nnext (default the --seed)")
      ->option_text("N")
      ->check(wholeNumber<uint64_t>(0, UINT64_MAX));
  command
      ->add_option_function<std::string>(
          "--noise",
          [options](const std::string& noise) {
            options->noise = noise == "heavy" ? SynthNoise::heavy : SynthNoise::mild;
          },
          "heavy gives the steps' times a right skew, rare\n"
          "outliers and a slow drift along the run (default mild)")
      ->option_text("mild|heavy")
      ->check(CLI::IsMember({"mild", "heavy"}));
  command
      ->add_option_function<std::vector<std::string>>(
          "--scale",
          [options](const std::vector<std::string>& scales) {
            for (const std::string& scale : scales)
              options->stepScales.push_back(*parseStepScale(scale));
          },
          "multiplies the spans of the step NAME, e.g.\nConv2D_3=1.10; repeatable")
      ->option_text("NAME=FACTOR")
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->check(parsedBy(parseStepScale, "NAME=FACTOR with a factor above 0 and up to 1000"));
  command
      ->add_option_function<std::string>(
          "--run-scale",
          [options](const std::string& factor) { options->runScale = *parseScaleFactor(factor); },
          "multiplies every duration of the run (default 1)")
      ->option_text("FACTOR")
      ->check(parsedBy(parseScaleFactor, "a factor above 0 and up to 1000"));
  command->callback([options, &run] {
    if (const StepScale* scale = findUnmatchedScale(*options))
      throw CLI::ValidationError("--scale", "no step of the run is named '" + scale->name + "'");
    if (const std::optional<std::string> failure =
            synthLog(*options, run.console.err, run.console.errIsTerminal)) {
      run.console.err << "kvt-profile-log synth: " << *failure << '\n';
      run.exitCode = exitBadInput;
    }
  });
}

} // namespace kvt::profiling
