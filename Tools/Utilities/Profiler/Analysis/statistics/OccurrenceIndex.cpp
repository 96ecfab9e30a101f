// Key lookup for the walk of executions, which meets every record of every execution.
#include "OccurrenceIndex.h"

namespace kvt::profiling {

void OccurrenceIndex::startExecution() {
  previousOrder.swap(currentOrder);
  currentOrder.clear();
  ++execution;
}

size_t OccurrenceIndex::findName(const SeriesKey& record) {
  const size_t position = currentOrder.size();
  if (position < previousOrder.size()) {
    const SeriesKey& expected = names[previousOrder[position]].key;
    if (expected.name == record.name && expected.parent == record.parent &&
        expected.kind == record.kind && expected.graph == record.graph)
      return previousOrder[position];
  }
  if (const auto it = nameByKey.find(record); it != nameByKey.end())
    return it->second;
  nameByKey.emplace(record, names.size());
  names.push_back(Name{record, {}, 0, 0});
  return names.size() - 1;
}

OccurrenceIndex::Slot OccurrenceIndex::next(const SeriesKey& record) {
  const size_t index = findName(record);
  currentOrder.push_back(index);
  Name& name = names[index];
  if (name.execution != execution) {
    name.execution = execution;
    name.seen = 0;
  }
  const uint64_t occurrence = name.seen++;
  if (occurrence == name.seriesByOccurrence.size())
    name.seriesByOccurrence.push_back(noSeries);
  return Slot{name.seriesByOccurrence[occurrence], occurrence};
}

} // namespace kvt::profiling
