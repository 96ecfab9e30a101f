// A run's series as one list of rows with their figures: what the statistics' CSV prints and a
// data frame holds.
#pragma once

#include "statistics/RunStatistics.h"
#include "statistics/SeriesList.h"
#include "statistics/SeriesSummary.h"

#include <optional>
#include <string_view>
#include <vector>

namespace kvt::profiling {

// Points into the run.
struct SeriesFigureRow {
  std::string_view graph;
  SeriesRef series;
  SeriesSummary summary;
  std::optional<double> share; // span rows only: the step's share of the graph's time
};

// Every graph's series in listSeries order, graph after graph.
std::vector<SeriesFigureRow> listSeriesFigureRows(const RunStatistics& run);

} // namespace kvt::profiling
