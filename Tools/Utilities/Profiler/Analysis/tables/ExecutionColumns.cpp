// Text is looked up once per series, not per row: a row costs seven pushes and a comparison.
#include "ExecutionColumns.h"

namespace kvt::profiling {

uint32_t ExecutionColumnBuilder::findCode(CodeMap& codes, std::vector<std::string>& categories,
                                          const std::string& text) {
  const auto [it, added] = codes.try_emplace(text, uint32_t(categories.size()));
  if (added)
    categories.push_back(text);
  return it->second;
}

void ExecutionColumnBuilder::startLog() {
  graphCodes.clear();
  seriesCodes.clear();
  columns.rowsByLog.push_back(0);
}

void ExecutionColumnBuilder::noteOversized(const ExecutionRows& rows, const ExecutionKeys& keys) {
  for (const SeriesValue& value : rows.values)
    if (value.value > uint64_t(INT64_MAX)) {
      columns.firstOversized = OversizedValue{
          columns.rowsByLog.size() - 1, keys.series[value.series], rows.execution, value.value};
      return;
    }
}

void ExecutionColumnBuilder::append(const ExecutionRows& rows, const ExecutionKeys& keys) {
  if (columns.rowsByLog.empty())
    startLog();
  while (graphCodes.size() < keys.graphs.size())
    graphCodes.push_back(findCode(graphCodeByName, columns.graphs, keys.graphs[graphCodes.size()]));
  while (seriesCodes.size() < keys.series.size()) {
    const SeriesKey& key = keys.series[seriesCodes.size()];
    SeriesCodes codes;
    codes.kind = uint8_t(key.kind);
    if (key.parent)
      codes.parent = int32_t(findCode(parentCodeByName, columns.parents, *key.parent));
    codes.name = findCode(nameCodeByName, columns.names, key.name);
    if (key.occurrence)
      codes.occurrence = *key.occurrence;
    seriesCodes.push_back(codes);
  }
  bool oversized = false;
  for (const SeriesValue& value : rows.values) {
    const SeriesCodes& codes = seriesCodes[value.series];
    columns.graph.push(graphCodes[rows.graph]);
    columns.execution.push(rows.execution);
    columns.series.push(codes.kind);
    columns.parent.push(codes.parent);
    columns.name.push(codes.name);
    columns.occurrence.push(codes.occurrence);
    columns.value.push(value.value);
    oversized = oversized || value.value > uint64_t(INT64_MAX);
  }
  columns.rowsByLog.back() += rows.values.size();
  if (oversized && !columns.firstOversized)
    noteOversized(rows, keys);
}

LogReadResult readExecutionColumns(const std::string& path, const ExecutionRowOptions& options,
                                   ExecutionColumnBuilder& builder) {
  builder.startLog();
  return readExecutionRows(
      path, options,
      [&](const ExecutionRows& rows, const ExecutionKeys& keys) { builder.append(rows, keys); });
}

} // namespace kvt::profiling
