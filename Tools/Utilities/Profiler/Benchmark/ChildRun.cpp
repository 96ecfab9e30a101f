// fork, a pipe for the child's own timing and findings, and wait4 for its resource usage.
#include "ChildRun.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <iostream>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kvt::profiling {

namespace {

bool writeAll(int fd, const void* data, size_t bytes) {
  const char* next = static_cast<const char*>(data);
  while (bytes > 0) {
    const ssize_t written = write(fd, next, bytes);
    if (written <= 0)
      return false;
    next += written;
    bytes -= size_t(written);
  }
  return true;
}

std::string readAll(int fd) {
  std::string text;
  char block[4096];
  for (ssize_t got; (got = read(fd, block, sizeof block)) > 0;)
    text.append(block, size_t(got));
  return text;
}

} // namespace

ChildMeasurement measureInChild(const std::function<bool(std::string& findings)>& work) {
  ChildMeasurement measurement;
  int report[2];
  if (pipe(report) != 0)
    return measurement;
  std::cout.flush();
  std::fflush(nullptr); // nothing buffered is written twice
  const pid_t child = fork();
  if (child == 0) {
    close(report[0]);
    std::string findings;
    const auto start = std::chrono::steady_clock::now();
    const bool done = work(findings);
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const bool sent = writeAll(report[1], &seconds, sizeof seconds) &&
                      writeAll(report[1], findings.data(), findings.size());
    std::cout.flush();
    std::fflush(nullptr);
    _exit(done && sent ? 0 : 1); // the parent's exit handlers are not the child's to run
  }
  close(report[1]);
  if (child < 0) {
    close(report[0]);
    return measurement;
  }
  const std::string sent = readAll(report[0]);
  close(report[0]);
  int status = 0;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) != child)
    return measurement;
  if (sent.size() < sizeof measurement.seconds || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
    return measurement;
  measurement.succeeded = true;
  std::memcpy(&measurement.seconds, sent.data(), sizeof measurement.seconds);
  measurement.findings = sent.substr(sizeof measurement.seconds);
  measurement.cpuSeconds = double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
  measurement.peakResidentBytes = uint64_t(usage.ru_maxrss) * 1024; // reported in KiB
  return measurement;
}

} // namespace kvt::profiling
