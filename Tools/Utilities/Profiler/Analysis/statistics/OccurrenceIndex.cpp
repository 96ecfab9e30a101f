// Key lookup for the statistics pass, which meets every record of every execution.
#include "OccurrenceIndex.h"

namespace kvt::profiling {

void OccurrenceIndex::startExecution() {
  previousOrder.swap(currentOrder);
  currentOrder.clear();
  ++execution;
}

size_t OccurrenceIndex::findKey(std::string_view parent, std::string_view name) {
  const size_t position = currentOrder.size();
  if (position < previousOrder.size()) {
    const Key& expected = keys[previousOrder[position]];
    if (expected.name == name && expected.parent == parent)
      return previousOrder[position];
  }
  // The parent's length first, so that no two (parent, name) pairs share a text.
  keyText.assign(std::to_string(parent.size())).append(":").append(parent).append(name);
  if (const auto it = keyByText.find(std::string_view(keyText)); it != keyByText.end())
    return it->second;
  keys.push_back(Key{std::string(parent), std::string(name), {}, 0, 0});
  keyByText.emplace(keyText, keys.size() - 1);
  return keys.size() - 1;
}

OccurrenceIndex::Slot OccurrenceIndex::next(std::string_view parent, std::string_view name) {
  const size_t index = findKey(parent, name);
  currentOrder.push_back(index);
  Key& key = keys[index];
  if (key.execution != execution) {
    key.execution = execution;
    key.seen = 0;
  }
  const uint64_t occurrence = key.seen++;
  if (occurrence == key.seriesByOccurrence.size())
    key.seriesByOccurrence.push_back(noSeries);
  return Slot{key.seriesByOccurrence[occurrence], occurrence};
}

} // namespace kvt::profiling
