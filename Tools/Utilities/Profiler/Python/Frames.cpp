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

constexpr int verdictCount = 6; // Verdict's values, slower to removed

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

template <typename Row, typename Kind>
py::object seriesColumn(const std::vector<Row>& rows, Kind kind) {
  return makeCategorical(numberColumn<int8_t>(rows, kind), listSeriesKinds());
}

py::object occurrenceColumn(ChunkedColumn<uint64_t>& occurrence) {
  py::array_t<int64_t> values = moveColumn<int64_t>(occurrence);
  py::array_t<bool> missing(values.size());
  int64_t* value = values.mutable_data();
  bool* absent = missing.mutable_data();
  const py::ssize_t rows = values.size();
  {
    const py::gil_scoped_release released;
    for (py::ssize_t i = 0; i < rows; ++i) {
      absent[i] = value[i] == int64_t(ExecutionColumns::noOccurrence);
      if (absent[i])
        value[i] = 0;
    }
  }
  return makeNullableIntegers(values, missing);
}

// The log column: each log's code repeated over its rows.
py::object logColumn(const std::vector<size_t>& rowsByLog, const std::vector<std::string>& logs) {
  size_t rows = 0;
  for (const size_t count : rowsByLog)
    rows += count;
  py::array_t<int32_t> codes(py::ssize_t(rows), nullptr);
  int32_t* code = codes.mutable_data();
  for (size_t log = 0; log < rowsByLog.size(); ++log)
    code = std::fill_n(code, rowsByLog[log], int32_t(log));
  return makeCategorical(codes, logs);
}

// "in LOG, graph G, span Conv under execute, occurrence 0": where a series is, for messages.
std::string describePlace(const std::string& log, const SeriesKey& key) {
  std::string place = "in " + log + ", graph " + key.graph + ", " +
                      std::string(seriesKindName(key.kind)) + " " + key.name;
  if (key.parent)
    place += " under " + *key.parent;
  if (key.occurrence)
    place += ", occurrence " + std::to_string(*key.occurrence);
  return place;
}

std::optional<uint64_t> figure(const SeriesFigureRow& row, uint64_t value) {
  return row.summary.count ? std::optional(value) : std::nullopt;
}

std::optional<double> figure(const SeriesFigureRow& row, double value) {
  return row.summary.count ? std::optional(value) : std::nullopt;
}

void requireInt64Figures(const SeriesFigureRow& row, const std::string& log) {
  const std::string place = describePlace(log, makeSeriesKey(row.graph, row.series));
  if (row.summary.count)
    requireInt64(row.summary.max, "the largest value", place);
  if (row.summary.first)
    requireInt64(*row.summary.first, "the first value", place);
}

} // namespace

std::vector<std::string> listSeriesKinds() {
  std::vector<std::string> kinds;
  for (int kind = 0; kind < seriesKindCount; ++kind)
    kinds.emplace_back(seriesKindName(SeriesKind(kind)));
  return kinds;
}

std::vector<std::string> listVerdicts() {
  std::vector<std::string> verdicts;
  for (int verdict = 0; verdict < verdictCount; ++verdict)
    verdicts.emplace_back(verdictName(Verdict(verdict)));
  return verdicts;
}

py::object makeExecutionsFrame(ExecutionColumns& columns, const FrameLogs& logs) {
  if (const std::optional<OversizedValue>& oversized = columns.firstOversized)
    requireInt64(oversized->value, "the value",
                 describePlace(logs.paths[oversized->log], oversized->series) + ", execution " +
                     std::to_string(oversized->execution));
  // The order of the moves is that of the columns; each frees its chunks before the next.
  std::vector<std::pair<const char*, py::object>> frame;
  frame.emplace_back("graph", categoricalColumn(columns.graph, columns.graphs));
  frame.emplace_back("series", categoricalColumn(columns.series, listSeriesKinds()));
  frame.emplace_back("name", categoricalColumn(columns.name, columns.names));
  frame.emplace_back("parent", categoricalColumn(columns.parent, columns.parents));
  frame.emplace_back("occurrence", occurrenceColumn(columns.occurrence));
  frame.emplace_back("execution", moveColumn<int64_t>(columns.execution));
  frame.emplace_back("value", moveColumn<int64_t>(columns.value));
  if (logs.column)
    frame.emplace_back("log", logColumn(columns.rowsByLog, logs.paths));
  return makeFrame(frame);
}

py::object makeStatsFrame(const std::vector<RunStatistics>& runs, const FrameLogs& logs) {
  std::vector<SeriesFigureRow> rows;
  std::vector<size_t> rowsByLog;
  for (size_t log = 0; log < runs.size(); ++log) {
    const std::vector<SeriesFigureRow> runRows = listSeriesFigureRows(runs[log]);
    for (const SeriesFigureRow& row : runRows)
      requireInt64Figures(row, logs.paths[log]);
    rows.insert(rows.end(), runRows.begin(), runRows.end());
    rowsByLog.push_back(runRows.size());
  }
  using Row = SeriesFigureRow;
  auto integer = [](uint64_t SeriesSummary::*field) {
    return [field](const Row& row) { return figure(row, row.summary.*field); };
  };
  auto decimal = [](double SeriesSummary::*field) {
    return [field](const Row& row) { return figure(row, row.summary.*field); };
  };
  std::vector<std::pair<const char*, py::object>> frame{
      {"graph", textColumn(rows, [](const Row& row) { return std::optional(row.graph); })},
      {"series", seriesColumn(rows, [](const Row& row) { return row.series.kind; })},
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
      {"share", optionalDoubleColumn(rows, [](const Row& row) { return row.share; })}};
  if (logs.column)
    frame.emplace_back("log", logColumn(rowsByLog, logs.paths));
  return makeFrame(frame);
}

py::object makeComparisonFrame(const Comparison& comparison) {
  const std::vector<ComparisonRow>& rows = comparison.rows;
  for (const ComparisonRow& row : rows) {
    const SeriesKey key{row.graph, row.kind, row.name, row.parent, row.occurrence};
    requireInt64(row.base.p50.value_or(0), "the median", describePlace("base", key));
    requireInt64(row.next.p50.value_or(0), "the median", describePlace("new", key));
  }
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
       {"series", seriesColumn(rows, [](const Row& row) { return row.kind; })},
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
       {"change_percent", optionalDoubleColumn(rows,
                                               [](const Row& row) {
                                                 return row.change
                                                            ? std::optional(row.change->percent)
                                                            : std::nullopt;
                                               })},
       {"interval_low", optionalDoubleColumn(rows, interval(&Interval::low))},
       {"interval_high", optionalDoubleColumn(rows, interval(&Interval::high))},
       {"p_value", optionalDoubleColumn(rows, [](const Row& row) { return row.pValue; })},
       {"p_adjusted", optionalDoubleColumn(rows, [](const Row& row) { return row.pAdjusted; })},
       {"q_value", optionalDoubleColumn(rows, [](const Row& row) { return row.qValue; })},
       {"verdict", makeCategorical(numberColumn<int8_t>(
                                       rows, [](const Row& row) { return int8_t(row.verdict); }),
                                   listVerdicts(), true)},
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
  py::list graphs;
  for (const GraphShift& graph : comparison.graphs) {
    const Interval* interval =
        graph.change && graph.change->interval ? &*graph.change->interval : nullptr;
    py::dict shift;
    shift["name"] = decodeText(graph.name);
    shift["shift"] = floatOrNone(graph.shift ? std::optional(graph.shift->units) : std::nullopt);
    shift["change_percent"] =
        floatOrNone(graph.change ? std::optional(graph.change->percent) : std::nullopt);
    shift["interval_low"] = floatOrNone(interval ? std::optional(interval->low) : std::nullopt);
    shift["interval_high"] = floatOrNone(interval ? std::optional(interval->high) : std::nullopt);
    shift["ratio"] = graph.ratio;
    shift["step_series"] = graph.stepSeries;
    graphs.append(shift);
  }
  return graphs;
}

py::dict describeTotals(const ComparisonTotals& totals) {
  using Totals = ComparisonTotals;
  return describeCounts(totals, {{"slower", &Totals::slower},
                                 {"faster", &Totals::faster},
                                 {"same", &Totals::same},
                                 {"unsure", &Totals::unsure},
                                 {"added", &Totals::added},
                                 {"removed", &Totals::removed},
                                 {"tested", &Totals::tested}});
}

} // namespace kvt::profiling
