// fork and exec with both output streams sent to files, read back once the program has exited.
#include "ProgramRun.h"

#include "support/TestFiles.h"

#include <string_view>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kvt::profiling::testing {

namespace {

// Only async-signal-safe calls between fork and exec: the test process may have threads.
[[noreturn]] void execInChild(const char* program, char* const* argv, char* const* envp,
                              const char* workingDir, const char* outputFile,
                              const char* errorFile) {
  const int input = open("/dev/null", O_RDONLY);
  const int output = open(outputFile, O_WRONLY | O_CREAT | O_TRUNC, 0644);
  const int error = open(errorFile, O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (input < 0 || output < 0 || error < 0 || dup2(input, STDIN_FILENO) < 0 ||
      dup2(output, STDOUT_FILENO) < 0 || dup2(error, STDERR_FILENO) < 0 || chdir(workingDir) != 0)
    _exit(127);
  execve(program, argv, envp);
  _exit(127);
}

// The null-terminated array of C strings execve takes; the strings must outlive it.
std::vector<char*> pointersTo(std::vector<std::string>& strings) {
  std::vector<char*> pointers;
  for (std::string& text : strings)
    pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

} // namespace

ProgramRun runProgram(const std::filesystem::path& program,
                      const std::vector<std::string>& arguments,
                      const std::filesystem::path& workingDir) {
  const TempDir captures;
  const std::string outputFile = (captures.path() / "stdout").string();
  const std::string errorFile = (captures.path() / "stderr").string();
  const std::string programPath = program.string();
  const std::string workingDirPath = workingDir.string();
  std::vector<std::string> argumentCopies{programPath};
  argumentCopies.insert(argumentCopies.end(), arguments.begin(), arguments.end());
  std::vector<std::string> environment{"TZ=UTC"};
  for (char** variable = environ; *variable; ++variable)
    if (!std::string_view(*variable).starts_with("TZ="))
      environment.emplace_back(*variable);
  const std::vector<char*> argv = pointersTo(argumentCopies);
  const std::vector<char*> envp = pointersTo(environment);

  ProgramRun run;
  const pid_t child = fork();
  if (child == 0)
    execInChild(programPath.c_str(), argv.data(), envp.data(), workingDirPath.c_str(),
                outputFile.c_str(), errorFile.c_str());
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child)
    return run;
  if (WIFEXITED(status))
    run.exitCode = WEXITSTATUS(status);
  run.standardOutput = readFile(outputFile);
  run.standardError = readFile(errorFile);
  return run;
}

} // namespace kvt::profiling::testing
