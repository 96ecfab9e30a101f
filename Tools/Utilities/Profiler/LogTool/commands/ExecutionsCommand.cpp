// `kvt-profile-log executions LOG` on the command line; the rows themselves are the analysis
// library's.
#include "CommandLine.h"
#include "LogReadReport.h"
#include "ReaderReports.h"
#include "ToolCommands.h"
#include "log/OutputFile.h"
#include "tables/ExecutionText.h"

#include <memory>

namespace kvt::profiling {

namespace {

struct ExecutionsCommandOptions {
  std::string logPath;
  int visibility = int(VisibilityLevel::keepAll);
  uint64_t skipFirst = 0;
  std::string format = "csv";
  std::string outputPath;
  bool partial = false;
};

// The standard output, or a file that takes its name only once it is complete.
class RowOutput {
public:
  RowOutput(const std::string& path, std::ostream& out) : out(out) {
    if (!path.empty())
      file.emplace(path);
  }
  bool isOpen() const { return !file || file->isOpen(); }
  bool write(std::string_view text) {
    if (!file)
      return bool(out.write(text.data(), std::streamsize(text.size())));
    return file->write(text);
  }
  bool close() { return file ? file->commit() : bool(out.flush()); }
  // The system's reason when the file cannot be written.
  std::string failure() const { return file ? ": " + file->failure() : ""; }

private:
  std::ostream& out;
  std::optional<OutputFile> file;
};

int runExecutions(const ExecutionsCommandOptions& options, ToolConsole& console) {
  constexpr std::string_view command = "kvt-profile-log executions";
  const std::string target = options.outputPath.empty() ? "the rows" : options.outputPath;
  RowOutput output(options.outputPath, console.out);
  if (!output.isOpen()) {
    console.err << command << ": cannot write " << target << output.failure() << '\n';
    return exitBadInput;
  }
  const ReaderReports reports;
  const ExecutionTextResult result = writeExecutionText(
      options.logPath, {VisibilityLevel(options.visibility), options.skipFirst},
      options.format == "jsonl" ? ExecutionTextFormat::jsonl : ExecutionTextFormat::csv,
      [&output](std::string_view text) { return output.write(text); });
  // The rows read before a bad chunk are kept even when the log then fails; a path that is no log
  // leaves no file.
  const bool noLog = !result.read.complete() && isNotALog(*result.read.fault);
  if (!noLog && (!result.written || !output.close())) {
    console.err << command << ": cannot write " << target << output.failure() << '\n';
    return exitBadInput;
  }
  return reportLogRead(console.err, command, result.read, options.partial) ? exitSuccess
                                                                           : exitBadInput;
}

} // namespace

void addExecutionsCommand(CLI::App& tool, CommandRun& run) {
  CLI::App* command = tool.add_subcommand(
      "executions", "prints every execution's values as one long table, a row per value");
  command->footer(
      "One row per value of every series that stats keeps, as the executions are read:\n"
      "log, graph, execution (its index within its graph, from 0), series (duration,\n"
      "queueWait, backend, span or wait), parent, name, occurrence and value, in the log's\n"
      "unit. The queue wait is a row in the executions that had exactly one. The log's path\n"
      "is a column, so the files of many logs concatenate into one table. Memory: one chunk of\n"
      "the log and one execution's rows. With -o, the file appears only once complete. A log\n"
      "that fails at a bad chunk still gives the rows of the whole chunks before it, then exit 1\n"
      "(0 with --partial).\n"
      "Exit status: 0 done, 1 unreadable log or unwritable output, 2 wrong command line.");
  const auto options = std::make_shared<ExecutionsCommandOptions>();
  command->add_option("LOG", options->logPath, "the log to read")->required()->check(nonEmpty());
  command
      ->add_option("--visibility", options->visibility,
                   "keep messages whose level is below N (default 127)")
      ->option_text("N")
      ->check(wholeNumber<int>(-128, 127));
  command
      ->add_option("--skip-first", options->skipFirst, "leave each graph's first N executions out")
      ->option_text("N")
      ->check(wholeNumber<uint64_t>(0, UINT64_MAX));
  command->add_option("--format", options->format, "csv (default) or jsonl, a JSON object a line")
      ->option_text("csv|jsonl")
      ->check(CLI::IsMember({"csv", "jsonl"}));
  command->add_option("-o", options->outputPath, "the file to write instead of the standard output")
      ->option_text("FILE")
      ->check(nonEmpty());
  addPartialFlag(*command, options->partial);
  command->callback([options, &run] { run.exitCode = runExecutions(*options, run.console); });
}

} // namespace kvt::profiling
