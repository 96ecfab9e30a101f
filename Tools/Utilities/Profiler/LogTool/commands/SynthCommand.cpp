// `kvt-profile-log synth` on the command line.
#include "CommandLine.h"
#include "ToolCommands.h"
#include "synth/LogSynth.h"

#include <memory>

namespace kvt::profiling {

void addSynthCommand(CLI::App& tool, CommandRun& run) {
  using Limits = SynthLimits;
  CLI::App* command = tool.add_subcommand("synth", "writes a deterministic log of a whole run");
  command->footer(
      "Writes a deterministic log of one run: library load, init, compose, one finalize per\n"
      "graph, the executions of every graph, the overall figures and de-init. Progress is shown\n"
      "on the standard error when it is a terminal and the job takes longer than a second.");
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
  command->callback([options, &run] { run.exitCode = synthLog(*options, run.console); });
}

} // namespace kvt::profiling
