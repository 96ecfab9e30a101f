// Each column is copied out of its chunks into an array of the type pandas keeps it in, the GIL
// released, and its chunks freed before the next one: the peak is the table plus one column.
#include "Frames.h"

#include "FrameColumns.h"
#include "tables/SeriesFigureRows.h"

#include <cstdint>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace kvt::profiling {

namespace {

constexpr int seriesKinds = 5; // SeriesKind's values, duration to wait

// The chunks of a column come from the heap once the reader's buffers have raised the C library's
// threshold for mapping large blocks, and freeing them would not shrink the process: the table
// would stay resident beside the frame.
void returnFreedMemory() {
#if defined(__GLIBC__)
  malloc_trim(0);
#endif
}

template <typename Out, typename Value> py::array_t<Out> moveColumn(ChunkedColumn<Value>& column) {
  py::array_t<Out> array(py::ssize_t(column.size()));
  Out* out = array.mutable_data();
  {
    const py::gil_scoped_release released;
    column.moveInto(out);
    returnFreedMemory();
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

py::object occurrenceColumn(ChunkedColumn<uint64_t>& occurrence) {
  py::array_t<uint64_t> values = moveColumn<uint64_t>(occurrence);
  py::array_t<bool> missing(values.size());
  uint64_t* value = values.mutable_data();
  bool* absent = missing.mutable_data();
  const py::ssize_t rows = values.size();
  {
    const py::gil_scoped_release released;
    for (py::ssize_t i = 0; i < rows; ++i) {
      absent[i] = value[i] == ExecutionColumns::noOccurrence;
      if (absent[i])
        value[i] = 0;
    }
  }
  return makeNullableIntegers(values, missing);
}

std::optional<uint64_t> figure(const SeriesFigureRow& row, uint64_t value) {
  return row.summary.count ? std::optional(value) : std::nullopt;
}

std::optional<double> figure(const SeriesFigureRow& row, double value) {
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
  const std::vector<SeriesFigureRow> rows = listSeriesFigureRows(run);
  using Row = SeriesFigureRow;
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

py::object makeComparisonFrame(const Comparison& comparison) {
  const std::vector<ComparisonRow>& rows = comparison.rows;
  using Row = ComparisonRow;
  auto interval = [](double Interval::*end) {
    return [end](const Row& row) -> std::optional<double> {
      if (!row.change || !row.change->interval)
        return std::nullopt;
      return (*row.change->interval).*end;
    };
  };
  return makeFrame(
      {{"graph",
        textColumn(rows,
                   [](const Row& row) { return std::optional<std::string_view>(row.graph); })},
       {"series",
        textColumn(rows, [](const Row& row) { return std::optional(seriesKindName(row.kind)); })},
       {"name",
        textColumn(rows, [](const Row& row) { return std::optional<std::string_view>(row.name); })},
       {"parent",
        textColumn(rows,
                   [](const Row& row) -> std::optional<std::string_view> { return row.parent; })},
       {"occurrence", optionalIntegerColumn(rows, [](const Row& row) { return row.occurrence; })},
       {"base_count", numberColumn<int64_t>(rows, [](const Row& row) { return row.base.count; })},
       {"base_p50", optionalIntegerColumn(rows, [](const Row& row) { return row.base.p50; })},
       {"new_count", numberColumn<int64_t>(rows, [](const Row& row) { return row.next.count; })},
       {"new_p50", optionalIntegerColumn(rows, [](const Row& row) { return row.next.p50; })},
       {"shift", optionalDoubleColumn(rows,
                                      [](const Row& row) {
                                        return row.shift ? std::optional(row.shift->units)
                                                         : std::nullopt;
                                      })},
       {"changePercent", optionalDoubleColumn(rows,
                                              [](const Row& row) {
                                                return row.change
                                                           ? std::optional(row.change->percent)
                                                           : std::nullopt;
                                              })},
       {"interval_low", optionalDoubleColumn(rows, interval(&Interval::low))},
       {"interval_high", optionalDoubleColumn(rows, interval(&Interval::high))},
       {"pValue", optionalDoubleColumn(rows, [](const Row& row) { return row.pValue; })},
       {"pAdjusted", optionalDoubleColumn(rows, [](const Row& row) { return row.pAdjusted; })},
       {"qValue", optionalDoubleColumn(rows, [](const Row& row) { return row.qValue; })},
       {"verdict",
        textColumn(rows, [](const Row& row) { return std::optional(verdictName(row.verdict)); })},
       {"needed_base", optionalIntegerColumn(rows,
                                             [](const Row& row) {
                                               return row.needed ? std::optional(row.needed->base -
                                                                                 row.base.count)
                                                                 : std::nullopt;
                                             })},
       {"needed_new", optionalIntegerColumn(rows, [](const Row& row) {
          return row.needed ? std::optional(row.needed->next - row.next.count) : std::nullopt;
        })}});
}

py::list describeGraphShifts(const Comparison& comparison) {
  auto orNone = [](std::optional<double> value) -> py::object {
    return value ? py::object(py::float_(*value)) : py::object(py::none());
  };
  py::list graphs;
  for (const GraphShift& graph : comparison.graphs) {
    const Interval* interval =
        graph.change && graph.change->interval ? &*graph.change->interval : nullptr;
    py::dict shift;
    shift["name"] = decodeText(graph.name);
    shift["shift"] = orNone(graph.shift ? std::optional(graph.shift->units) : std::nullopt);
    shift["changePercent"] =
        orNone(graph.change ? std::optional(graph.change->percent) : std::nullopt);
    shift["interval_low"] = orNone(interval ? std::optional(interval->low) : std::nullopt);
    shift["interval_high"] = orNone(interval ? std::optional(interval->high) : std::nullopt);
    shift["ratio"] = graph.ratio;
    shift["stepSeries"] = graph.stepSeries;
    graphs.append(shift);
  }
  return graphs;
}

py::dict describeTotals(const ComparisonTotals& totals) {
  py::dict described;
  described["slower"] = totals.slower;
  described["faster"] = totals.faster;
  described["same"] = totals.same;
  described["unsure"] = totals.unsure;
  described["added"] = totals.added;
  described["removed"] = totals.removed;
  described["tested"] = totals.tested;
  return described;
}

} // namespace kvt::profiling
