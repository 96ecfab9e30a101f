// Argument parsing for the log tool's commands. Options may come in any order; a later
// repetition of an option overrides an earlier one.
#include "ToolOptions.h"

#include <charconv>
#include <optional>

namespace kvt::profiling {

namespace {

constexpr std::string_view overviewUsage =
    "usage: kvt-profile-log COMMAND [OPTIONS]\n"
    "Looks inside, builds, synthesises and measures profiling logs.\n"
    "\n"
    "commands:\n"
    "  dump LOG                prints the chunks of LOG as one JSON document\n"
    "  build IN.json -o LOG    writes the chunks of a dump document as the log LOG\n"
    "  synth -o LOG [OPTIONS]  writes a deterministic log of a whole run\n"
    "  stats LOG [OPTIONS]     prints each graph's statistics: percentiles per step\n"
    "  compare BASE NEW        tells which steps got slower or faster, beyond noise\n"
    "\n"
    "'kvt-profile-log COMMAND --help' describes a command.\n"
    "Exit status: 0 done, 1 bad input or unwritable output, 2 wrong command line, 3 compare\n"
    "found a series slower.\n";

constexpr std::string_view dumpUsage =
    "usage: kvt-profile-log dump LOG\n"
    "Prints the chunks of LOG, in file order, as one JSON document on the standard output:\n"
    "  {\"chunks\": [{\"offset\": ..., \"size\": ..., \"log\": {...}}, ...]}\n"
    "offset is where the chunk's size prefix starts in the file, size the bytes of its buffer,\n"
    "and log its content with the fields that are present, in schema order. Every chunk is\n"
    "verified as the reader verifies it; a bad chunk is reported on the standard error by\n"
    "number (from 0) and offset, and the exit status is then 1 after the good chunks.\n";

constexpr std::string_view buildUsage =
    "usage: kvt-profile-log build IN.json -o LOG\n"
    "       kvt-profile-log build --chunks CHUNK.json... -o LOG\n"
    "Writes a log from JSON: IN.json is a document as dump prints it (offsets and sizes in it\n"
    "are ignored); with --chunks, each CHUNK.json is the log object of one chunk, in log order.\n"
    "Keys may be quoted or bare, // comments are allowed, and every field written is stored,\n"
    "even when it holds its default. Each chunk is laid out in one canonical way, whatever the\n"
    "order of its fields, so a dump builds back into the identical file.\n";

constexpr std::string_view synthUsage =
    "usage: kvt-profile-log synth -o LOG [OPTIONS]\n"
    "Writes a deterministic log of one run: library load, init, compose, one finalize per\n"
    "graph, the executions of every graph, the overall figures and de-init.\n"
    "\n"
    "  -o LOG                  the log to write\n"
    "  --graphs G              graphs of the run (default 2)\n"
    "  --executions E          executions of each graph (default 10)\n"
    "  --steps S               execution steps of each execution (default 8)\n"
    "  --detail linting|basic  linting gives every step its wait, background and resource\n"
    "                          sub-events, which the trace needs (default linting)\n"
    "  --queue-wait            executions record their queue wait\n"
    "  --messages-per-chunk M  messages of one chunk (default 16)\n"
    "  --seed N                seed of the figures (default 1)\n"
    "\n"
    "Progress is shown on the standard error when it is a terminal and the job takes longer\n"
    "than a second.\n";

bool isHelp(std::string_view arg) {
  return arg == "--help" || arg == "-h";
}

bool isOption(std::string_view arg) {
  return arg.size() > 1 && arg.front() == '-';
}

// Walks one command's arguments; the first error sticks.
class ArgumentCursor {
public:
  ArgumentCursor(std::string_view command, std::span<const std::string_view> args)
      : command(command), args(args) {}

  bool done() const { return next >= args.size() || error; }
  std::string_view take() { return args[next++]; }

  // The value that must follow option.
  std::string_view value(std::string_view option) {
    if (next < args.size())
      return args[next++];
    fail(std::string(option) + " needs a value");
    return {};
  }

  template <typename Number> Number number(std::string_view option, Number low, Number high) {
    const std::string_view text = value(option);
    uint64_t parsed = 0;
    const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (error)
      return low;
    if (status != std::errc() || end != text.data() + text.size() || parsed < low ||
        parsed > high) {
      fail(std::string(option) + " needs a whole number from " + std::to_string(low) + " to " +
           std::to_string(high) + ", not '" + std::string(text) + "'");
      return low;
    }
    return Number(parsed);
  }

  void fail(std::string message) {
    if (!error)
      error = UsageError{std::move(message), std::string(command)};
  }

  std::optional<UsageError> error;

private:
  std::string_view command;
  std::span<const std::string_view> args;
  size_t next = 0;
};

ToolCommand parseDump(ArgumentCursor& cursor) {
  DumpOptions options;
  bool haveLog = false;
  while (!cursor.done()) {
    const std::string_view arg = cursor.take();
    if (isOption(arg))
      cursor.fail("unknown option " + std::string(arg));
    else if (haveLog)
      cursor.fail("dump takes one log, not also " + std::string(arg));
    options.logPath = arg;
    haveLog = true;
  }
  if (!haveLog)
    cursor.fail("dump needs a log");
  return cursor.error ? ToolCommand(*cursor.error) : ToolCommand(options);
}

ToolCommand parseBuild(ArgumentCursor& cursor) {
  BuildOptions options;
  while (!cursor.done()) {
    const std::string_view arg = cursor.take();
    if (arg == "-o")
      options.outputPath = cursor.value(arg);
    else if (arg == "--chunks")
      options.chunkFiles = true;
    else if (isOption(arg))
      cursor.fail("unknown option " + std::string(arg));
    else
      options.inputPaths.emplace_back(arg);
  }
  if (options.outputPath.empty())
    cursor.fail("build needs -o LOG");
  else if (options.inputPaths.empty())
    cursor.fail(options.chunkFiles ? "build --chunks needs at least one chunk file"
                                   : "build needs a dump document");
  else if (!options.chunkFiles && options.inputPaths.size() > 1)
    cursor.fail("build takes one dump document; use --chunks for one file per chunk");
  return cursor.error ? ToolCommand(*cursor.error) : ToolCommand(options);
}

ToolCommand parseSynth(ArgumentCursor& cursor) {
  using Limits = SynthLimits;
  SynthOptions options;
  while (!cursor.done()) {
    const std::string_view arg = cursor.take();
    if (arg == "-o")
      options.outputPath = cursor.value(arg);
    else if (arg == "--graphs")
      options.graphs = cursor.number<uint32_t>(arg, 0, Limits::maxGraphs);
    else if (arg == "--executions")
      options.executions = cursor.number<uint64_t>(arg, 0, Limits::maxExecutions);
    else if (arg == "--steps")
      options.steps = cursor.number<uint32_t>(arg, 0, Limits::maxSteps);
    else if (arg == "--messages-per-chunk")
      options.messagesPerChunk = cursor.number<uint32_t>(arg, 1, Limits::maxMessagesPerChunk);
    else if (arg == "--seed")
      options.seed = cursor.number<uint64_t>(arg, 0, UINT64_MAX);
    else if (arg == "--queue-wait")
      options.queueWait = true;
    else if (arg == "--detail") {
      const std::string_view detail = cursor.value(arg);
      if (detail == "linting")
        options.detail = SynthDetail::linting;
      else if (detail == "basic")
        options.detail = SynthDetail::basic;
      else if (!cursor.error)
        cursor.fail("--detail is linting or basic, not '" + std::string(detail) + "'");
    } else if (isOption(arg))
      cursor.fail("unknown option " + std::string(arg));
    else
      cursor.fail("synth takes no " + std::string(arg));
  }
  if (options.outputPath.empty())
    cursor.fail("synth needs -o LOG");
  return cursor.error ? ToolCommand(*cursor.error) : ToolCommand(options);
}

} // namespace

ToolCommand parseToolOptions(std::span<const std::string_view> args) {
  if (args.empty())
    return UsageError{"no command given", ""};
  const std::string_view command = args.front();
  const std::span<const std::string_view> rest = args.subspan(1);
  if (isHelp(command) || command == "help")
    return HelpRequest{rest.empty() ? "" : std::string(rest.front())};
  for (const std::string_view arg : rest)
    if (isHelp(arg))
      return HelpRequest{std::string(command)};
  ArgumentCursor cursor(command, rest);
  if (command == "dump")
    return parseDump(cursor);
  if (command == "build")
    return parseBuild(cursor);
  if (command == "synth")
    return parseSynth(cursor);
  return UsageError{"unknown command " + std::string(command), ""};
}

std::string usageText(std::string_view command) {
  if (command == "dump")
    return std::string(dumpUsage);
  if (command == "build")
    return std::string(buildUsage);
  if (command == "synth")
    return std::string(synthUsage);
  return std::string(overviewUsage);
}

} // namespace kvt::profiling
