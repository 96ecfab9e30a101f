// The command-line conventions shared by the programs, on top of CLI11.
#include "CommandLine.h"

#include <algorithm>

namespace kvt::profiling {

namespace {

constexpr size_t optionColumnWidth = 26; // options and their values, then their descriptions

// The command whose help fits the error: the deepest subcommand that was given.
const CLI::App& commandOf(const CLI::App& app) {
  const std::vector<CLI::App*> given = app.get_subcommands();
  return given.empty() ? app : commandOf(*given.front());
}

std::string commandPath(const CLI::App& command) {
  const CLI::App* parent = command.get_parent();
  return parent ? commandPath(*parent) + " " + command.get_name() : command.get_name();
}

std::string failureMessage(const CLI::App* app, const CLI::Error& error) {
  return app->get_name() + ": " + error.what() + "\nRun '" + commandPath(commandOf(*app)) +
         " --help' for more information.\n";
}

bool isCommand(const CLI::App& app, const std::string& name) {
  const std::vector<const CLI::App*> commands = app.get_subcommands({});
  return std::ranges::any_of(
      commands, [&name](const CLI::App* command) { return command->check_name(name); });
}

} // namespace

void setUpCommandLine(CLI::App& app) {
  app.set_version_flag("--version", app.get_name() + " " + KVT_PROFILER_VERSION,
                       "print the program's name and version and exit");
  app.set_help_flag("-h,--help", "print this help and exit");
  app.get_formatter()->column_width(optionColumnWidth);
  app.failure_message(failureMessage);
  // A repeated option overrides the earlier one, so a script may append to a command line.
  app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

std::optional<int> parseCommandLine(CLI::App& app, const std::vector<std::string>& args,
                                    std::ostream& out, std::ostream& err) {
  // CLI11 takes the arguments last first.
  std::vector<std::string> reversed(args.rbegin(), args.rend());
  try {
    // CLI11 would report an unknown command as a missing one.
    if (app.get_require_subcommand_min() > 0 && !args.empty() && !args.front().starts_with('-') &&
        !isCommand(app, args.front()))
      throw CLI::ExtrasError("unknown command '" + args.front() + "'", CLI::ExitCodes::ExtrasError);
    app.parse(reversed);
  } catch (const CLI::ParseError& error) {
    const int status = app.exit(error, out, err);
    return status == 0 ? 0 : exitCommandLineError;
  }
  return std::nullopt;
}

CLI::Validator nonEmpty() {
  return CLI::Validator(
      [](const std::string& text) { return text.empty() ? std::string("needs a value") : ""; }, "");
}

} // namespace kvt::profiling
