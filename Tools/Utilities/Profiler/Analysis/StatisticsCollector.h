// Files each execution the dispatch hands out into its graph's series, as it comes.
#pragma once

#include "OccurrenceIndex.h"
#include "RunStatistics.h"
#include "model/ExecutionSeam.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kvt::profiling {

class StatisticsCollector {
public:
  // The first skipFirst executions of each graph give only the series' first values; with
  // onlyGraph, the executions of other graphs are ignored.
  StatisticsCollector(uint64_t skipFirst, std::optional<std::string> onlyGraph)
      : skipFirst(skipFirst), onlyGraph(std::move(onlyGraph)) {}

  void add(const DispatchedExecution& execution);
  // Consumes the collector: every series with its values sorted ascending.
  RunStatistics take() &&;

private:
  struct GraphState {
    GraphStatistics statistics;
    OccurrenceIndex backendIndex;
    OccurrenceIndex stepIndex;
  };
  struct Hash {
    using is_transparent = void;
    size_t operator()(std::string_view key) const { return std::hash<std::string_view>{}(key); }
  };

  GraphState& getOrCreateGraph(std::string_view name);

  uint64_t skipFirst = 0;
  std::optional<std::string> onlyGraph;
  std::vector<GraphState> graphs;
  std::unordered_map<std::string, size_t, Hash, std::equal_to<>> graphByName;
};

} // namespace kvt::profiling
