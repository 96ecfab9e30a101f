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
              "bytes, MiB = 2^20 bytes\n",
              runs, csvRuns);
  std::printf("everything reads on one thread unless a row says otherwise\n\n");
}

void printTargetHeader() {
  std::printf("%-16s %9s %9s %8s %13s %9s\n", "", "seconds", "MB/s", "x floor", "peak RSS MiB",
              "CPU s");
}

void printTarget(const std::string& name, const Measured& target, uint64_t logBytes,
                 const Measured& floor) {
  std::printf("%-16s %9.3f %9.1f %8.2f %13.1f %9.3f\n", name.c_str(), target.seconds,
              double(logBytes) / megabyte / target.seconds, target.seconds / floor.seconds,
              double(target.peakResidentBytes) / mebibyte, target.cpuSeconds);
  std::fflush(stdout);
}

void printComparisonNote(const ComparisonTiming& timing) {
  std::printf("compare reads both logs (MB/s of the two); comparing their %llu series took %.3f s "
              "of it, %.3f s per 1000 series\n",
              static_cast<unsigned long long>(timing.series), timing.comparisonSeconds,
              timing.series ? timing.comparisonSeconds * 1000 / double(timing.series) : 0.0);
}

void printScalingHeader() {
  std::printf("\nscaling: both readers on one graph (seconds, ns per record, peak RSS MiB)\n");
  std::printf("%-10s %10s %6s %8s %9s %8s %8s %7s %7s %8s %7s %7s\n", "", "executions", "steps",
              "MB", "M records", "floor s", "trace s", "ns/rec", "MiB", "CSV s", "ns/rec", "MiB");
}

void printScalingRow(const std::string& label, uint64_t executions, uint32_t steps,
                     uint64_t logBytes, const LogWalk& walk, const Measured& floor,
                     const Measured& trace, const std::optional<Measured>& csv) {
  const double records = double(walk.events);
  std::printf("%-10s %10llu %6u %8.1f %9.2f %8.3f %8.3f %7.1f %7.1f", label.c_str(),
              (unsigned long long)executions, steps, double(logBytes) / megabyte, records / 1e6,
              floor.seconds, trace.seconds, trace.seconds * 1e9 / records,
              double(trace.peakResidentBytes) / mebibyte);
  if (csv)
    std::printf(" %8.3f %7.1f %7.1f\n", csv->seconds, csv->seconds * 1e9 / records,
                double(csv->peakResidentBytes) / mebibyte);
  else
    std::printf(" %8s %7s %7s\n", "-", "-", "-");
  std::fflush(stdout);
}

} // namespace kvt::profiling
