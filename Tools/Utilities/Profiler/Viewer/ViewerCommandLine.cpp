// The viewer's options declared on CLI11, with the help texts a user reads.
#include "ViewerCommandLine.h"

#include "CommandLine.h"

namespace kvt::profiling {

namespace {

constexpr int32_t quietestLogLevel = 0; // no report reaches the standard error
constexpr int32_t loudestLogLevel = 5;  // verbose notes, the library's most detailed level

} // namespace

void addViewerOptions(CLI::App& app, ViewerOptions& options) {
  setUpCommandLine(app);
  app.description(
      "kvt-profile-viewer: reads a profiling log with a reader library loaded at run time and\n"
      "writes the reader's outputs. The standard output carries only what the library prints\n"
      "(parse warnings, then the statistics summary); the viewer's own messages and the library's\n"
      "reports go to the standard error. When that is a terminal and reading the log takes\n"
      "longer than a second, a progress line shows there until the log is read.\n");
  app.footer(
      "A value may also follow '=', as in --input=LOG.\n"
      "\n"
      "Exit status: 0 when the outputs were written; 1 when the reader library cannot be loaded,\n"
      "the log cannot be parsed or the outputs cannot be written; 2 for a command-line error.");
  app.add_option("--input", options.inputPath, "the profiling log to read; required")
      ->required()
      ->option_text("LOG")
      ->check(nonEmpty());
  app.add_option("--output", options.outputPath,
                 "the reader's output file: the Chrome trace for the chrometrace\n"
                 "reader, the CSV event log for the csv reader. Without it the\n"
                 "reader is given an empty name: the chrometrace reader then\n"
                 "refuses to write, the csv reader prints only the summary")
      ->option_text("FILE")
      ->check(nonEmpty());
  app.add_option("--reader", options.reader,
                 "the reader library: chrometrace (default) or csv, found next to\n"
                 "this program or in its installed layout, or the path of a\n"
                 "reader library")
      ->option_text("NAME|PATH")
      ->check(nonEmpty());
  app.add_option_function<int32_t>(
         "--visibility",
         [&options](const int32_t& level) { options.visibilityLevel = VisibilityLevel(level); },
         "keep the log's messages whose own visibility level is below N,\n"
         "from -128 to 127; default 127, which keeps every message of an\n"
         "ordinary log")
      ->option_text("N")
      ->check(wholeNumber<int32_t>(INT8_MIN, INT8_MAX));
  app.add_flag("--extended-backend-report", options.extendedBackendReport,
               "ask for the extended back-end report (readers that support it\n"
               "also write object events out to files)");
  app.add_option("--log-level", options.logLevel,
                 "print the library's reports up to level N on the standard error:\n"
                 "0 none, 1 errors (default), 2 warnings, 3 info, 4 debug,\n"
                 "5 verbose")
      ->option_text("N")
      ->check(wholeNumber(quietestLogLevel, loudestLogLevel));
}

} // namespace kvt::profiling
