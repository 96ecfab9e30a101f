// Text is looked up once per series, not per row: a row costs seven pushes.
#include "ExecutionColumns.h"

namespace kvt::profiling {

uint32_t ExecutionColumnBuilder::findCode(std::unordered_map<std::string, uint32_t>& codes,
                                          std::vector<std::string>& categories,
                                          const std::string& text) {
  const auto [it, added] = codes.try_emplace(text, uint32_t(categories.size()));
  if (added)
    categories.push_back(text);
  return it->second;
}

void ExecutionColumnBuilder::append(const ExecutionRows& rows, const ExecutionKeys& keys) {
  if (columns.graphs.size() < keys.graphs.size())
    columns.graphs = keys.graphs;
  while (seriesCodes.size() < keys.series.size()) {
    const ExecutionSeriesKey& key = keys.series[seriesCodes.size()];
    SeriesCodes codes;
    codes.kind = uint8_t(key.kind);
    if (key.parent)
      codes.parent = int32_t(findCode(parentCodes, columns.parents, *key.parent));
    codes.name = findCode(nameCodes, columns.names, key.name);
    if (key.occurrence)
      codes.occurrence = *key.occurrence;
    seriesCodes.push_back(codes);
  }
  for (const ExecutionValue& value : rows.values) {
    const SeriesCodes& codes = seriesCodes[value.series];
    columns.graph.push(rows.graph);
    columns.execution.push(rows.execution);
    columns.series.push(codes.kind);
    columns.parent.push(codes.parent);
    columns.name.push(codes.name);
    columns.occurrence.push(codes.occurrence);
    columns.value.push(value.value);
  }
}

LogReadResult readExecutionColumns(const std::string& path, const ExecutionRowOptions& options,
                                   bool partial, ExecutionColumns& columns) {
  ExecutionColumnBuilder builder;
  const LogReadResult result =
      readExecutionRows(path, options, [&](const ExecutionRows& rows, const ExecutionKeys& keys) {
        builder.append(rows, keys);
      });
  if (result.stands(partial))
    columns = std::move(builder).take();
  return result;
}

} // namespace kvt::profiling
