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
  // Draws the last state once more and ends the line, if a line was drawn.
  ~ProgressLine();

  // Cheap enough to call for every message; redraws a few times a second at most.
  void update(uint64_t done, uint64_t total, uint64_t writtenBytes);

private:
  using Clock = std::chrono::steady_clock;

  void draw(Clock::time_point now);

  std::ostream& terminal;
  const bool enabled;
  const std::string label;
  const Clock::time_point start = Clock::now();
  Clock::time_point lastDrawn;
  bool drawn = false;
  uint64_t done = 0;
  uint64_t total = 0;
  uint64_t writtenBytes = 0;
};

} // namespace kvt::profiling
