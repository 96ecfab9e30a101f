// Files each execution the dispatch hands out into its graph's series, as it comes.
#pragma once

#include "RunStatistics.h"
#include "SeriesWalk.h"
#include "StatisticsPass.h"
#include "model/ExecutionSeam.h"

#include <optional>
#include <string>
#include <vector>

namespace kvt::profiling {

class StatisticsCollector {
public:
  // The first skipFirst executions of each graph give only the series' first values (and, with
  // a sink, their values in order to it); with onlyGraph, the executions of other graphs are
  // ignored.
  StatisticsCollector(uint64_t skipFirst, std::optional<std::string> onlyGraph,
                      OrderedSeriesSink orderedSeries = {})
      : skipFirst(skipFirst), onlyGraph(std::move(onlyGraph)),
        orderedSeries(std::move(orderedSeries)) {}

  void add(const DispatchedExecution& execution);
  // Consumes the collector: every series, handed to the sink first when there is one, with its
  // counted values sorted ascending.
  RunStatistics take() &&;

private:
  uint64_t skipFirst = 0;
  std::optional<std::string> onlyGraph;
  OrderedSeriesSink orderedSeries;
  SeriesWalk walk;
  std::vector<uint64_t> executionsByGraph; // by the walk's graph index
  std::vector<Series> series;              // by the walk's series index
  std::vector<size_t> graphBySeries;
};

} // namespace kvt::profiling
