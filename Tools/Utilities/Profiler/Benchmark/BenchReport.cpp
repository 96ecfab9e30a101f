// Fixed-width rows; MB are 10^6 bytes (rates of input), MiB 2^20 bytes (memory).
#include "BenchReport.h"

#include <cstdio>

namespace kvt::profiling {

namespace {

constexpr double megabyte = 1e6;
constexpr double mebibyte = 1024.0 * 1024.0;

} // namespace

void printInput(const std::string& shape, uint64_t logBytes, const LogWalk& walk, uint32_t runs,
                uint32_t csvRuns) {
  std::printf("input: %s\n", shape.c_str());
  std::printf("       %.1f MB in %llu chunks (largest %.1f MiB), %llu messages, %.2f M records\n",
              double(logBytes) / megabyte, (unsigned long long)walk.chunks,
              double(walk.largestChunkBytes) / mebibyte, (unsigned long long)walk.messages,
              double(walk.events) / 1e6);
  std::printf("each run in a process of its own; best of %u runs (CSV reader: %u); MB = 10^6 "
              "bytes, MiB = 2^20 bytes\n\n",
              runs, csvRuns);
}

void printTargetHeader() {
  std::printf("%-14s %9s %9s %8s %13s %9s\n", "", "seconds", "MB/s", "x floor", "peak RSS MiB",
              "CPU s");
}

void printTarget(const std::string& name, const Measured& target, uint64_t logBytes,
                 const Measured& floor) {
  std::printf("%-14s %9.3f %9.1f %8.2f %13.1f %9.3f\n", name.c_str(), target.seconds,
              double(logBytes) / megabyte / target.seconds, target.seconds / floor.seconds,
              double(target.peakResidentBytes) / mebibyte, target.cpuSeconds);
  std::fflush(stdout);
}

void printScalingHeader() {
  std::printf("\nscaling: the trace reader on one graph\n");
  std::printf("%-16s %10s %6s %9s %10s %9s %9s %8s %13s\n", "", "executions", "steps", "MB",
              "M records", "floor s", "reader s", "ns/rec", "peak RSS MiB");
}

void printScalingRow(const std::string& label, uint64_t executions, uint32_t steps,
                     uint64_t logBytes, const LogWalk& walk, const Measured& floor,
                     const Measured& reader) {
  std::printf("%-16s %10llu %6u %9.1f %10.2f %9.3f %9.3f %8.1f %13.1f\n", label.c_str(),
              (unsigned long long)executions, steps, double(logBytes) / megabyte,
              double(walk.events) / 1e6, floor.seconds, reader.seconds,
              reader.seconds * 1e9 / double(walk.events),
              double(reader.peakResidentBytes) / mebibyte);
  std::fflush(stdout);
}

} // namespace kvt::profiling
