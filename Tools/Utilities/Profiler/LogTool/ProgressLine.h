// A progress line on a terminal for jobs that take a while: silent during the first second, so
// short jobs print nothing, and silent altogether when the stream is no terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <ostream>
#include <string>

namespace kvt::profiling {

class ProgressLine {
public:
  ProgressLine(std::ostream& terminal, bool isTerminal, std::string label);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  // Ends the line if one was drawn.
  ~ProgressLine();

  // Cheap enough to call for every message; redraws a few times a second at most.
  void update(uint64_t done, uint64_t total, uint64_t writtenBytes);

private:
  using Clock = std::chrono::steady_clock;

  std::ostream& terminal;
  const bool enabled;
  const std::string label;
  const Clock::time_point start = Clock::now();
  Clock::time_point lastDrawn;
  bool drawn = false;
};

} // namespace kvt::profiling
