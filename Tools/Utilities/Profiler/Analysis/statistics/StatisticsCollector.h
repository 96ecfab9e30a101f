// Files each execution the dispatch hands out into its graph's series, as it comes.
#pragma once

#include "OccurrenceIndex.h"
#include "RunStatistics.h"
#include "StatisticsPass.h"
#include "model/ExecutionSeam.h"
#include "model/GraphMap.h"

#include <optional>
#include <string>

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
  struct GraphState {
    GraphStatistics statistics;
    OccurrenceIndex backendIndex;
    OccurrenceIndex stepIndex;
  };
  uint64_t skipFirst = 0;
  std::optional<std::string> onlyGraph;
  OrderedSeriesSink orderedSeries;
  GraphMap<GraphState> graphs;
};

} // namespace kvt::profiling
