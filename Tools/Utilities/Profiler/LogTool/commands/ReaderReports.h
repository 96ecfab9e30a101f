// The reader's reports on the standard error, for the commands that read logs through the
// reader's own parse.
#pragma once

namespace kvt::profiling {

// Registers, for its lifetime, a logger that prints the reader's errors (level 1) as
// "kvt-profile-log: error: TEXT" lines on the standard error.
class ReaderReports {
public:
  ReaderReports();
  ReaderReports(const ReaderReports&) = delete;
  ReaderReports& operator=(const ReaderReports&) = delete;
  ~ReaderReports();
};

} // namespace kvt::profiling
