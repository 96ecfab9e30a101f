// Finds the series of the k-th record of one (parent, name) key in an execution, for keys that
// recur in every execution. Most records sit where they sat in the execution before, so that
// place is tried before the hash map.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kvt::profiling {

class OccurrenceIndex {
public:
  static constexpr size_t noSeries = SIZE_MAX; // a slot the caller has yet to fill

  // Where the next occurrence of a key in the current execution keeps its series index.
  struct Slot {
    size_t& series; // noSeries the first time the occurrence is met; valid until the next call
    uint64_t occurrence = 0;
  };

  // Starts counting occurrences afresh.
  void startExecution();
  Slot next(std::string_view parent, std::string_view name);

private:
  struct Key {
    std::string parent;
    std::string name;
    std::vector<size_t> seriesByOccurrence;
    uint64_t execution = 0; // the last execution that met the key
    uint64_t seen = 0;      // occurrences in that execution
  };
  struct Hash {
    using is_transparent = void;
    size_t operator()(std::string_view key) const { return std::hash<std::string_view>{}(key); }
  };

  size_t findKey(std::string_view parent, std::string_view name);

  std::vector<Key> keys;
  std::unordered_map<std::string, size_t, Hash, std::equal_to<>> keyByText;
  std::string keyText;               // reused for lookups
  std::vector<size_t> previousOrder; // the keys met in the last execution, in order
  std::vector<size_t> currentOrder;
  uint64_t execution = 0;
};

} // namespace kvt::profiling
