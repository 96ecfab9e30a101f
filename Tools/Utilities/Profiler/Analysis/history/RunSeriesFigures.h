// One figure per series of a run: what a history keeps of each run, whether it was read from a
// log or from the JSON that `stats` writes.
#pragma once

#include "statistics/RunStatistics.h"
#include "statistics/SeriesList.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvt::profiling {

// The figure of a run's values that stands for the run.
enum class HistoryFigure { p50, p90, mean };

// "p50", "p90" or "mean".
std::string_view historyFigureName(HistoryFigure figure);

// The figure of that name; none for any other.
std::optional<HistoryFigure> findHistoryFigure(std::string_view name);

// A series across runs: its graph, and its kind and key within the graph as `stats` lists them.
struct HistorySeriesKey {
  std::string graph;
  SeriesKind kind = SeriesKind::duration;
  std::string name;
  std::optional<std::string> parent;  // steps only
  std::optional<uint64_t> occurrence; // back-end records and steps only

  auto operator<=>(const HistorySeriesKey&) const = default;
};

struct RunSeriesFigure {
  HistorySeriesKey key;
  std::optional<double> value; // none when the run counted no value of the series
};

struct RunSeriesFigures {
  std::string source;
  std::optional<uint64_t> createdUs;   // the log header's creation time, us since the Unix epoch
  uint64_t executions = 0;             // counted, over every graph
  std::vector<RunSeriesFigure> series; // in the order `stats` lists them
};

// The figure of each series of run, listed as listSeries lists a graph's.
RunSeriesFigures figuresOfRun(const RunStatistics& run, HistoryFigure figure, std::string source);

} // namespace kvt::profiling
