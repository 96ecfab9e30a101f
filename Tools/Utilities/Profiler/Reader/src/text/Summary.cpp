// The statistics summary's sections.
#include "Summary.h"

#include "OverallFigures.h"

#include <cmath>
#include <iomanip>
#include <limits>

namespace kvt::profiling {

namespace {

using text_internal::backendLatencyUs;
using text_internal::inferencesPerSecond;

constexpr const char* indent = "    ";

// A line of width "-" characters; the fill goes back to a blank for whatever follows.
void writeRule(std::ostream& out, int width) {
  out << std::setfill('-') << std::setw(width) << "-" << std::setfill(' ') << "\n";
}

void writeNetRunLine(std::ostream& out, uint64_t durationUs) {
  out << indent << "NetRun: " << durationUs << " us\n";
}

// The truncated mean of a graph's queue waits. The conversion saturates: no waits (0 / 0) give 0,
// so nothing is subtracted, and a mean rounded up to 2^64 gives the largest value.
uint64_t meanQueueWaitUs(const std::vector<uint64_t>& queueWaitsUs) {
  constexpr double twoToThe64 = 18446744073709551616.0;
  double sum = 0;
  for (uint64_t wait : queueWaitsUs)
    sum += double(wait);
  const double mean = sum / double(queueWaitsUs.size());
  if (std::isnan(mean))
    return 0;
  return mean >= twoToThe64 ? std::numeric_limits<uint64_t>::max() : uint64_t(mean);
}

} // namespace

void writeHeaderDetailsLine(std::ostream& out, const ReportContext& context) {
  out << context.headerDetails << "\n";
}

void writeRunStatistics(std::ostream& out, const ReportContext& context) {
  out << "Kvt Init/Prepare/Finalize/De-Init/Execute/Lib-Load Statistics:\n";
  writeRule(out, 60);
  writeInitStats(out, context);
  writeComposeGraphsStats(out, context);
  writeFinalizeStats(out, context);
  writeDeInitStats(out, context);
}

void writeInitStats(std::ostream& out, const ReportContext& context) {
  const EventModel& model = context.model;
  out << "Init Stats:\n";
  writeRule(out, 11);
  writeNetRunLine(out, model.initTiming.duration);
  if (model.hasInitEvents)
    context.writeBackendReport(out, model.initEvents);
  else if (model.initSlot.present)
    context.writeBackendReport(out, model.initSlot.events);
  out << "\n";
}

void writeComposeGraphsStats(std::ostream& out, const ReportContext& context) {
  out << "Compose Graphs Stats:\n";
  writeRule(out, 14);
  writeNetRunLine(out, context.model.composeGraphsTiming.duration);
  out << "\n";
}

void writeFinalizeStats(std::ostream& out, const ReportContext& context) {
  const EventModel& model = context.model;
  out << "Finalize Stats:\n";
  writeRule(out, 15);
  size_t graphNumber = 0;
  for (const auto& [graph, entry] : model.finalizeByGraph) {
    out << "Graph " << graphNumber++ << " (" << graph << "):\n";
    writeNetRunLine(out, entry.duration);
    if (model.hasFinalizeEvents)
      context.writeBackendReport(out, entry.events);
    out << "\n";
  }
  out << "\n";
}

void writeDeInitStats(std::ostream& out, const ReportContext& context) {
  out << "De-Init Stats:\n";
  writeRule(out, 14);
  writeNetRunLine(out, context.model.deinitSlot.duration);
  context.writeBackendReport(out, context.model.deinitSlot.events);
  out << "\n";
}

void writeExecuteAverageStats(std::ostream& out, const ReportContext& context) {
  const EventModel& model = context.model;
  out << "Execute Stats (Average):\n";
  writeRule(out, 24);
  out << "Total Inference Time: \n";
  writeRule(out, 21);
  size_t graphNumber = 0;
  for (const auto& [graph, average] : model.averageExecutionByGraph) {
    out << "Graph " << graphNumber++ << " (" << graph << "):\n";
    out << indent << "NetRun" << (model.queueWaitMode ? " (Host Round-Trip)" : "") << ": "
        << average.duration << " us\n";
    if (!model.hasCombinedExecute) {
      if (model.queueWaitMode) {
        if (const std::vector<uint64_t>* queueWaitsUs = model.queueWaitByGraph.find(graph)) {
          // Unsigned on purpose: a mean above the round trip wraps around.
          out << indent << "NetRun (Host Round-Trip excluding queue wait): "
              << average.duration - meanQueueWaitUs(*queueWaitsUs) << "\n";
        }
      }
      context.writeBackendReport(out, average.events);
    }
    out << "\n";
  }
  out << "\n";
}

void writeExecuteOverallStats(std::ostream& out, const ReportContext& context) {
  const std::optional<float> rate = inferencesPerSecond(context.model.executeOverallSlot);
  if (!rate)
    return;
  out << std::fixed << std::setprecision(4) << "Execute Stats (Overall):\n";
  writeRule(out, 24);
  out << indent << "NetRun IPS (includes IO and misc. time): " << *rate << " inf/sec \n\n";
}

void writeLibLoadStats(std::ostream& out, const ReportContext& context) {
  const std::optional<uint64_t> latencyUs = backendLatencyUs(context.model.libLoadSlot);
  if (!latencyUs)
    return;
  out << std::fixed << std::setprecision(4) << "Dynamic Lib Load Stats:\n";
  writeRule(out, 24);
  out << indent << "Backend Latency: " << *latencyUs << " us\n\n";
}

} // namespace kvt::profiling
