// Redrawing one line with a carriage return.
#include "ProgressLine.h"

#include <algorithm>
#include <cstdio>
#include <iomanip>
#include <sstream>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace kvt::profiling {

namespace {

constexpr std::chrono::milliseconds quietTime{1000};     // jobs shorter than this show nothing
constexpr std::chrono::milliseconds redrawInterval{250}; // between two redraws of the line

double mebibytes(uint64_t bytes) {
  return double(bytes) / double(1 << 20);
}

} // namespace

std::string formatProgress(std::string_view label, const Progress& progress, double seconds) {
  std::ostringstream line;
  line << label << ": " << std::fixed << std::setprecision(0)
       << (progress.total ? 100.0 * double(progress.done) / double(progress.total) : 100.0) << "%, "
       << std::setprecision(1) << mebibytes(progress.bytes);
  if (progress.totalBytes)
    line << " of " << mebibytes(progress.totalBytes);
  line << " MiB, " << (seconds > 0 ? mebibytes(progress.bytes) / seconds : 0.0) << " MiB/s, "
       << seconds << " s";
  return line.str();
}

bool standardErrorIsTerminal() {
#if defined(_WIN32)
  return _isatty(_fileno(stderr)) != 0;
#else
  return isatty(STDERR_FILENO) != 0;
#endif
}

ProgressLine::ProgressLine(std::ostream& terminal, bool isTerminal, std::string label)
    : terminal(terminal), enabled(isTerminal), label(std::move(label)) {}

ProgressLine::~ProgressLine() {
  if (drawnWidth)
    terminal << '\r' << std::string(drawnWidth, ' ') << '\r' << std::flush;
}

void ProgressLine::update(const Progress& progress) {
  if (!enabled)
    return;
  const Clock::time_point now = Clock::now();
  if (now - start < quietTime || (drawnWidth && now - lastDrawn < redrawInterval))
    return;
  const std::string line =
      formatProgress(label, progress, std::chrono::duration<double>(now - start).count());
  // Blanks cover what is left of a longer line drawn before.
  terminal << '\r' << line
           << std::string(drawnWidth > line.size() ? drawnWidth - line.size() : 0, ' ')
           << std::flush;
  drawnWidth = std::max(drawnWidth, line.size());
  lastDrawn = now;
}

} // namespace kvt::profiling
