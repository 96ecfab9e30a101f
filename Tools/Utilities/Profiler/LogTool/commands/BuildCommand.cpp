// `kvt-profile-log build` on the command line.
#include "CommandLine.h"
#include "ToolCommands.h"
#include "document/LogBuild.h"

#include <memory>

namespace kvt::profiling {

void addBuildCommand(CLI::App& tool, CommandRun& run) {
  CLI::App* command = tool.add_subcommand(
      "build", "writes the chunks of a dump document, or chunk files, as a log");
  command->footer(
      "Writes a log from JSON: JSON is a document as dump prints it (offsets and sizes in it\n"
      "are ignored); with --chunks, each JSON file is the log object of one chunk, in log order.\n"
      "Keys may be quoted or bare, // comments are allowed, and every field written is stored,\n"
      "even when it holds its default. Each chunk is laid out in one canonical way, whatever the\n"
      "order of its fields, so a dump builds back into the identical file.");
  const auto options = std::make_shared<BuildOptions>();
  command->add_option("JSON", options->inputPaths, "a dump document, or the chunk files")
      ->required()
      ->check(nonEmpty());
  command->add_option("-o", options->outputPath, "the log to write")
      ->required()
      ->option_text("LOG")
      ->check(nonEmpty());
  command->add_flag("--chunks", options->chunkFiles, "each JSON file is one chunk's log object");
  command->callback([options, &run] {
    if (!options->chunkFiles && options->inputPaths.size() > 1)
      throw CLI::ValidationError("build takes one dump document; use --chunks for one file per "
                                 "chunk");
    if (const std::optional<std::string> failure = buildLog(*options)) {
      run.console.err << "kvt-profile-log build: " << *failure << '\n';
      run.exitCode = exitBadInput;
    }
  });
}

} // namespace kvt::profiling
