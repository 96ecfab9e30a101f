// Redrawing one line with a carriage return.
#include "ProgressLine.h"

#include <iomanip>

namespace kvt::profiling {

namespace {

constexpr std::chrono::milliseconds quietTime{1000};     // jobs shorter than this show nothing
constexpr std::chrono::milliseconds redrawInterval{250}; // between two redraws of the line

} // namespace

ProgressLine::ProgressLine(std::ostream& terminal, bool isTerminal, std::string label)
    : terminal(terminal), enabled(isTerminal), label(std::move(label)) {}

ProgressLine::~ProgressLine() {
  if (!drawn)
    return;
  draw(Clock::now());
  terminal << '\n' << std::flush;
}

void ProgressLine::update(uint64_t done, uint64_t total, uint64_t writtenBytes) {
  if (!enabled)
    return;
  this->done = done;
  this->total = total;
  this->writtenBytes = writtenBytes;
  const Clock::time_point now = Clock::now();
  if (now - start >= quietTime && (!drawn || now - lastDrawn >= redrawInterval))
    draw(now);
}

void ProgressLine::draw(Clock::time_point now) {
  const double seconds = std::chrono::duration<double>(now - start).count();
  const double mebibytes = double(writtenBytes) / double(1 << 20);
  terminal << '\r' << label << ": " << std::fixed << std::setprecision(0)
           << (total ? 100.0 * double(done) / double(total) : 100.0) << "%, " << mebibytes
           << " MiB, " << std::setprecision(1) << mebibytes / seconds << " MiB/s   " << std::flush;
  lastDrawn = now;
  drawn = true;
}

} // namespace kvt::profiling
