// Finds the series of the k-th record of one name (under one parent) in an execution, for names
// that recur in every execution. Most records sit where they sat in the execution before, so that
// place is tried before the hash map.
#pragma once

#include "SeriesKey.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace kvt::profiling {

class OccurrenceIndex {
public:
  static constexpr size_t noSeries = SIZE_MAX; // a slot the caller has yet to fill

  // Where the next occurrence of a name in the current execution keeps its series index.
  struct Slot {
    size_t& series; // noSeries the first time the occurrence is met; valid until the next call
    uint64_t occurrence = 0;
  };

  // Starts counting occurrences afresh.
  void startExecution();
  // The slot of the next record named by record, a key without an occurrence.
  Slot next(const SeriesKey& record);

private:
  struct Name {
    SeriesKey key;
    std::vector<size_t> seriesByOccurrence;
    uint64_t execution = 0; // the last execution that met the name
    uint64_t seen = 0;      // occurrences in that execution
  };

  size_t findName(const SeriesKey& record);

  std::vector<Name> names;
  std::unordered_map<SeriesKey, size_t, SeriesKeyHash> nameByKey;
  std::vector<size_t> previousOrder; // the names met in the last execution, in order
  std::vector<size_t> currentOrder;
  uint64_t execution = 0;
};

} // namespace kvt::profiling
