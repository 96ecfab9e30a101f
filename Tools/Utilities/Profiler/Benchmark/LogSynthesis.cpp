// posix_spawn of "kvt-profile-log synth" with the shape as options.
#include "LogSynthesis.h"

#include <cstdio>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace kvt::profiling {

bool synthesizeLog(const std::string& toolPath, const SynthShape& shape, const std::string& path) {
  std::vector<std::string> args = {toolPath,
                                   "synth",
                                   "-o",
                                   path,
                                   "--graphs",
                                   std::to_string(shape.graphs),
                                   "--executions",
                                   std::to_string(shape.executions),
                                   "--steps",
                                   std::to_string(shape.steps),
                                   "--detail",
                                   "linting",
                                   "--messages-per-chunk",
                                   std::to_string(shape.messagesPerChunk)};
  if (shape.noiseSeed != 0) {
    args.push_back("--noise-seed");
    args.push_back(std::to_string(shape.noiseSeed));
  }
  std::vector<char*> argv;
  for (std::string& arg : args)
    argv.push_back(arg.data());
  argv.push_back(nullptr);
  pid_t tool = 0;
  if (posix_spawn(&tool, toolPath.c_str(), nullptr, nullptr, argv.data(), environ) != 0) {
    std::perror(toolPath.c_str());
    return false;
  }
  int status = 0;
  if (waitpid(tool, &status, 0) != tool || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    std::fprintf(stderr, "kvt-profile-bench: %s synth failed\n", toolPath.c_str());
    return false;
  }
  return true;
}

} // namespace kvt::profiling
