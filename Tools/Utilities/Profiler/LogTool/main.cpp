// kvt-profile-log: look inside, build and synthesise profiling logs.
#include "log/LogWriter.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr const char* usage =
    "usage: kvt-profile-log frame -o LOG BUFFER...\n"
    "  frame   frames finished FlatBuffers buffers (flatc -b output) as the chunks of LOG\n";

int frame(int argc, char** argv) {
  if (argc < 4 || std::string(argv[2]) != "-o") {
    std::fputs(usage, stderr);
    return 2;
  }
  std::vector<uint8_t> log;
  for (int i = 4; i < argc; ++i) {
    std::ifstream in(argv[i], std::ios::binary);
    if (!in) {
      std::fprintf(stderr, "kvt-profile-log: cannot read %s\n", argv[i]);
      return 1;
    }
    const std::vector<uint8_t> buffer{std::istreambuf_iterator<char>(in), {}};
    const std::vector<uint8_t> chunk = kvt::profiling::frameChunk(buffer);
    log.insert(log.end(), chunk.begin(), chunk.end());
  }
  if (!kvt::profiling::writeFileBytes(argv[3], log)) {
    std::fprintf(stderr, "kvt-profile-log: cannot write %s\n", argv[3]);
    return 1;
  }
  return 0;
}

} // namespace

int main(int argc, char** argv) {
  if (argc >= 2 && std::string(argv[1]) == "frame")
    return frame(argc, argv);
  std::fputs(usage, stderr);
  return 2;
}
