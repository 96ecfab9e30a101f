// `kvt-profile-log dump LOG` on the command line.
#include "CommandLine.h"
#include "ToolCommands.h"
#include "document/LogDump.h"

#include <memory>

namespace kvt::profiling {

void addDumpCommand(CLI::App& tool, CommandRun& run) {
  CLI::App* command = tool.add_subcommand("dump", "prints the chunks of LOG as one JSON document");
  command->footer(
      "Prints the chunks of LOG, in file order, as one JSON document on the standard output:\n"
      "  {\"chunks\": [{\"offset\": ..., \"size\": ..., \"log\": {...}}, ...]}\n"
      "offset is where the chunk's size prefix starts in the file, size the bytes of its buffer,\n"
      "and log its content with the fields that are present, in schema order. Every chunk is\n"
      "verified as the reader verifies it; a bad chunk is reported on the standard error by\n"
      "number (from 0) and offset, and the exit status is then 1 after the good chunks.");
  const auto options = std::make_shared<DumpOptions>();
  command->add_option("LOG", options->logPath, "the log to dump")->required()->check(nonEmpty());
  command->callback([options, &run] {
    for (const std::string& problem : dumpLog(*options, run.console.out)) {
      run.console.err << "kvt-profile-log dump: " << problem << '\n';
      run.exitCode = exitBadInput;
    }
  });
}

} // namespace kvt::profiling
