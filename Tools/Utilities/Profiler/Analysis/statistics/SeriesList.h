// A graph's series as one flat list, as the CSV and the comparison walk them.
#pragma once

#include "RunStatistics.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kvt::profiling {

enum class SeriesKind { duration, queueWait, backend, span, wait };

// "duration", "queueWait", "backend", "span" or "wait".
std::string_view seriesKindName(SeriesKind kind);

// One series of a graph with the key it is matched by. Points into the graph.
struct SeriesRef {
  SeriesKind kind = SeriesKind::duration;
  std::string_view name;                  // the kind's name for duration and queueWait
  std::optional<std::string_view> parent; // steps only
  std::optional<uint64_t> occurrence;     // back-end records and steps only
  const Series* series = nullptr;
};

// Duration, the queue wait when it is a series, each back-end record, then each step's span and,
// when the step ever had one, its wait; in that order.
std::vector<SeriesRef> listSeries(const GraphStatistics& graph);

} // namespace kvt::profiling
