// A progress line on a terminal for jobs that take a while: silent during the first second, so
// short jobs print nothing, silent altogether when the stream is no terminal, and wiped when the
// job is done.
#pragma once

#include <chrono>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

namespace kvt::profiling {

struct Progress {
  uint64_t done = 0; // units of the job done so far, of total
  uint64_t total = 0;
  uint64_t bytes = 0;      // read or written so far
  uint64_t totalBytes = 0; // the job's whole size in bytes; 0 when not known beforehand
};

// The line for progress after seconds, MiB being 2^20 bytes:
// "synth: 42%, 512.0 MiB, 98.3 MiB/s, 5.2 s" or, with totalBytes,
// "reading: 42%, 512.0 of 1210.7 MiB, 98.3 MiB/s, 5.2 s".
std::string formatProgress(std::string_view label, const Progress& progress, double seconds);

// Whether the standard error is a terminal, the one place a progress line is drawn.
bool standardErrorIsTerminal();

class ProgressLine {
public:
  ProgressLine(std::ostream& terminal, bool isTerminal, std::string label);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  // Wipes the line, if one was drawn, leaving the cursor where the line began.
  ~ProgressLine();

  // Cheap enough to call for every message; redraws a few times a second at most.
  void update(const Progress& progress);

private:
  using Clock = std::chrono::steady_clock;

  std::ostream& terminal;
  const bool enabled;
  const std::string label;
  const Clock::time_point start = Clock::now();
  Clock::time_point lastDrawn;
  size_t drawnWidth = 0; // of the line on the terminal; 0 until one is drawn
};

} // namespace kvt::profiling
