// Each column is copied out of its chunks into an array of the type pandas keeps it in, the GIL
// released, and its chunks freed before the next one: the peak is the table plus one column.
#include "Frames.h"

#include "FrameColumns.h"
#include "tables/SeriesFigures.h"

#include <cstdint>

namespace kvt::profiling {

namespace {

constexpr int seriesKinds = 5; // SeriesKind's values, duration to wait

template <typename Out, typename Value> py::array_t<Out> moveColumn(ChunkedColumn<Value>& column) {
  py::array_t<Out> array(py::ssize_t(column.size()));
  Out* out = array.mutable_data();
  {
    const py::gil_scoped_release released;
    column.moveInto(out);
  }
  return array;
}

// pandas keeps a categorical's codes in the smallest signed type below the number of categories
// (int8 under 127, ...); codes made in that type are not copied again.
template <typename Value>
py::object categoricalColumn(ChunkedColumn<Value>& codes, const std::vector<std::string>& names) {
  if (names.size() < INT8_MAX)
    return makeCategorical(moveColumn<int8_t>(codes), names);
  if (names.size() < INT16_MAX)
    return makeCategorical(moveColumn<int16_t>(codes), names);
  return makeCategorical(moveColumn<int32_t>(codes), names);
}

py::object occurrenceColumn(ChunkedColumn<int64_t>& occurrence) {
  py::array_t<int64_t> values = moveColumn<int64_t>(occurrence);
  py::array_t<bool> missing(values.size());
  int64_t* value = values.mutable_data();
  bool* absent = missing.mutable_data();
  const py::ssize_t rows = values.size();
  {
    const py::gil_scoped_release released;
    for (py::ssize_t i = 0; i < rows; ++i) {
      absent[i] = value[i] == ExecutionColumns::noCode;
      if (absent[i])
        value[i] = 0;
    }
  }
  return makeNullableIntegers(values, missing);
}

std::optional<uint64_t> figure(const SeriesFigures& row, uint64_t value) {
  return row.summary.count ? std::optional(value) : std::nullopt;
}

std::optional<double> figure(const SeriesFigures& row, double value) {
  return row.summary.count ? std::optional(value) : std::nullopt;
}

} // namespace

py::object makeExecutionsFrame(ExecutionColumns& columns) {
  std::vector<std::string> kinds;
  for (int kind = 0; kind < seriesKinds; ++kind)
    kinds.emplace_back(seriesKindName(SeriesKind(kind)));
  // The order of the moves is that of the columns; each frees its chunks before the next.
  py::object graph = categoricalColumn(columns.graph, columns.graphs);
  py::object execution = moveColumn<int64_t>(columns.execution);
  py::object series = categoricalColumn(columns.series, kinds);
  py::object parent = categoricalColumn(columns.parent, columns.parents);
  py::object name = categoricalColumn(columns.name, columns.names);
  py::object occurrence = occurrenceColumn(columns.occurrence);
  py::object value = moveColumn<uint64_t>(columns.value);
  return makeFrame({{"graph", graph},
                    {"execution", execution},
                    {"series", series},
                    {"parent", parent},
                    {"name", name},
                    {"occurrence", occurrence},
                    {"value", value}});
}

py::object makeStatsFrame(const RunStatistics& run) {
  const std::vector<SeriesFigures> rows = listSeriesFigures(run);
  using Row = SeriesFigures;
  auto integer = [](uint64_t SeriesSummary::*field) {
    return [field](const Row& row) { return figure(row, row.summary.*field); };
  };
  auto decimal = [](double SeriesSummary::*field) {
    return [field](const Row& row) { return figure(row, row.summary.*field); };
  };
  return makeFrame(
      {{"graph", textColumn(rows, [](const Row& row) { return std::optional(row.graph); })},
       {"series",
        textColumn(rows,
                   [](const Row& row) { return std::optional(seriesKindName(row.series.kind)); })},
       {"name", textColumn(rows, [](const Row& row) { return std::optional(row.series.name); })},
       {"parent", textColumn(rows, [](const Row& row) { return row.series.parent; })},
       {"occurrence",
        optionalIntegerColumn(rows, [](const Row& row) { return row.series.occurrence; })},
       {"count", numberColumn<int64_t>(rows, [](const Row& row) { return row.summary.count; })},
       {"mean", optionalDoubleColumn(rows, decimal(&SeriesSummary::mean))},
       {"stddev", optionalDoubleColumn(rows, decimal(&SeriesSummary::stddev))},
       {"min", optionalIntegerColumn(rows, integer(&SeriesSummary::min))},
       {"p50", optionalIntegerColumn(rows, integer(&SeriesSummary::p50))},
       {"p90", optionalIntegerColumn(rows, integer(&SeriesSummary::p90))},
       {"p99", optionalIntegerColumn(rows, integer(&SeriesSummary::p99))},
       {"max", optionalIntegerColumn(rows, integer(&SeriesSummary::max))},
       {"first", optionalIntegerColumn(rows, [](const Row& row) { return row.summary.first; })},
       {"share", optionalDoubleColumn(rows, [](const Row& row) { return row.share; })}});
}

} // namespace kvt::profiling
