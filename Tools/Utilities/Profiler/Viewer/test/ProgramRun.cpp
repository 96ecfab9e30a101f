// Runs a program with both output streams sent to files, read back once it has exited: fork and
// exec, or CreateProcess on Windows.
#include "ProgramRun.h"

#include "support/TestFiles.h"

#include <algorithm>
#include <string_view>

#if defined(_WIN32)
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace kvt::profiling::testing {

namespace {

namespace fs = std::filesystem;

#if defined(_WIN32)

// One argument as the C runtime reads it back from a command line: quoted, with the backslashes
// before a quote doubled.
std::wstring quoted(const std::wstring& argument) {
  std::wstring text = L"\"";
  size_t backslashes = 0;
  for (const wchar_t c : argument) {
    if (c == L'\\') {
      ++backslashes;
      continue;
    }
    text.append(c == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
    text += c;
    backslashes = 0;
  }
  text.append(2 * backslashes, L'\\');
  return text + L"\"";
}

HANDLE openInheritable(const fs::path& path, DWORD access, DWORD creation) {
  SECURITY_ATTRIBUTES security{sizeof security, nullptr, TRUE};
  return CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &security, creation,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

// The program's exit code; -1 when it could not be started.
int runAndWait(const std::vector<std::string>& command, const fs::path& workingDir,
               const fs::path& outputFile, const fs::path& errorFile) {
  std::wstring commandLine;
  for (const std::string& argument : command)
    commandLine += (commandLine.empty() ? L"" : L" ") + quoted(fs::path(argument).wstring());
  SetEnvironmentVariableW(L"TZ", L"UTC"); // inherited by the program
  const HANDLE handles[] = {openInheritable(L"NUL", GENERIC_READ, OPEN_EXISTING),
                            openInheritable(outputFile, GENERIC_WRITE, CREATE_ALWAYS),
                            openInheritable(errorFile, GENERIC_WRITE, CREATE_ALWAYS)};
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = handles[0];
  startup.hStdOutput = handles[1];
  startup.hStdError = handles[2];
  PROCESS_INFORMATION process{};
  int exitCode = -1;
  const bool opened =
      std::ranges::none_of(handles, [](HANDLE h) { return h == INVALID_HANDLE_VALUE; });
  if (opened && CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                               workingDir.c_str(), &startup, &process)) {
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    if (GetExitCodeProcess(process.hProcess, &code))
      exitCode = int(code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  for (const HANDLE handle : handles)
    if (handle != INVALID_HANDLE_VALUE)
      CloseHandle(handle);
  return exitCode;
}

#else

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

// The program's exit code; -1 when it did not exit normally.
int runAndWait(std::vector<std::string> command, const fs::path& workingDir,
               const fs::path& outputFile, const fs::path& errorFile) {
  std::vector<std::string> environment{"TZ=UTC"};
  for (char** variable = environ; *variable; ++variable)
    if (!std::string_view(*variable).starts_with("TZ="))
      environment.emplace_back(*variable);
  const std::vector<char*> argv = pointersTo(command);
  const std::vector<char*> envp = pointersTo(environment);
  const std::string workingDirPath = workingDir.string();

  const pid_t child = fork();
  if (child == 0)
    execInChild(argv[0], argv.data(), envp.data(), workingDirPath.c_str(), outputFile.c_str(),
                errorFile.c_str());
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
    return -1;
  return WEXITSTATUS(status);
}

#endif

} // namespace

ProgramRun runProgram(const fs::path& program, const std::vector<std::string>& arguments,
                      const fs::path& workingDir) {
  const TempDir captures;
  const fs::path outputFile = captures.path() / "stdout";
  const fs::path errorFile = captures.path() / "stderr";
  // A program built for another machine runs through the build's emulator.
  std::vector<std::string> command = KVT_PROGRAM_EMULATOR;
  command.push_back(program.string());
  command.insert(command.end(), arguments.begin(), arguments.end());

  ProgramRun run;
  run.exitCode = runAndWait(command, workingDir, outputFile, errorFile);
  run.standardOutput = readFile(outputFile);
  run.standardError = readFile(errorFile);
  return run;
}

} // namespace kvt::profiling::testing
