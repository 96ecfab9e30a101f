// A graph's series as one flat list, as the CSV and the comparison walk them.
#pragma once

#include "RunStatistics.h"
#include "SeriesKey.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kvt::profiling {

// One series of a graph with the parts of its key. Points into the graph.
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

// The key of a series of graph.
SeriesKey makeSeriesKey(std::string_view graph, const SeriesRef& series);

} // namespace kvt::profiling
