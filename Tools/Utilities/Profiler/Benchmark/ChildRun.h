// Runs a piece of work in a child process of its own, so that its time and its peak resident
// memory are measured apart from everything else the benchmark does.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace kvt::profiling {

struct ChildMeasurement {
  bool succeeded = false; // work returned true and the child ended normally
  double seconds = 0;     // wall time of work alone, without the fork
  double cpuSeconds = 0;  // user and system time of the whole child
  uint64_t peakResidentBytes = 0;
  std::string findings; // what work left in its findings argument
};

// Forks, runs work in the child and waits for it (wait4's resource usage gives the child's peak
// resident memory, which starts at the parent's size at the fork). Whatever work writes to its
// argument comes back as findings, so that the parent need not touch the data itself. Not for
// use with threads.
ChildMeasurement measureInChild(const std::function<bool(std::string& findings)>& work);

} // namespace kvt::profiling
