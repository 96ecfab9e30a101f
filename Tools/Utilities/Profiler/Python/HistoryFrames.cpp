// A row of either frame points into the history, so the columns are filled from it without a
// copy of the rows.
#include "HistoryFrames.h"

#include "FrameColumns.h"
#include "Frames.h"

namespace kvt::profiling {

namespace {

struct ChangeRow {
  const HistorySeries* series = nullptr;
  const HistoryChange* change = nullptr;
};

struct ValueRow {
  const HistorySeries* series = nullptr;
  uint64_t run = 0;
};

// The series' key columns, then run and source, of rows that point at a series and a run.
template <typename Row, typename RunOf>
std::vector<std::pair<const char*, py::object>>
keyColumns(const History& history, const std::vector<Row>& rows, RunOf runOf) {
  auto key = [](const Row& row) -> const HistorySeriesKey& { return row.series->key; };
  return {
      {"graph",
       textColumn(rows,
                  [&](const Row& row) { return std::optional<std::string_view>(key(row).graph); })},
      {"series", makeCategorical(numberColumn<int8_t>(
                                     rows, [&](const Row& row) { return int8_t(key(row).kind); }),
                                 listSeriesKinds())},
      {"name",
       textColumn(rows,
                  [&](const Row& row) { return std::optional<std::string_view>(key(row).name); })},
      {"parent", textColumn(rows,
                            [&](const Row& row) -> std::optional<std::string_view> {
                              return key(row).parent;
                            })},
      {"occurrence",
       optionalIntegerColumn(rows, [&](const Row& row) { return key(row).occurrence; })},
      {"run", numberColumn<int64_t>(rows, runOf)},
      {"source", textColumn(rows, [&](const Row& row) {
         return std::optional<std::string_view>(history.runs[runOf(row)].source);
       })}};
}

py::dict describeChange(const HistoryChange& change) {
  py::dict described;
  described["run"] = change.run;
  described["before"] = floatOrNone(change.before);
  described["after"] = floatOrNone(change.after);
  described["change_percent"] = floatOrNone(change.changePercent);
  described["interval_low"] =
      floatOrNone(change.interval ? std::optional(change.interval->low) : std::nullopt);
  described["interval_high"] =
      floatOrNone(change.interval ? std::optional(change.interval->high) : std::nullopt);
  described["p_adjusted"] = floatOrNone(change.pAdjusted);
  described["q_value"] = floatOrNone(change.qValue);
  described["verdict"] = verdictName(change.verdict);
  return described;
}

} // namespace

py::object makeHistoryChangesFrame(const History& history) {
  std::vector<ChangeRow> rows;
  for (const HistorySeries& series : history.series)
    for (const HistoryChange& change : series.changes)
      rows.push_back({&series, &change});
  using Row = ChangeRow;
  auto figure = [](std::optional<double> HistoryChange::*field) {
    return [field](const Row& row) { return (*row.change).*field; };
  };
  auto interval = [](double Interval::*end) {
    return [end](const Row& row) -> std::optional<double> {
      if (!row.change->interval)
        return std::nullopt;
      return (*row.change->interval).*end;
    };
  };
  std::vector<std::pair<const char*, py::object>> frame =
      keyColumns(history, rows, [](const Row& row) { return row.change->run; });
  frame.emplace_back("before", optionalDoubleColumn(rows, figure(&HistoryChange::before)));
  frame.emplace_back("after", optionalDoubleColumn(rows, figure(&HistoryChange::after)));
  frame.emplace_back("change_percent",
                     optionalDoubleColumn(rows, figure(&HistoryChange::changePercent)));
  frame.emplace_back("interval_low", optionalDoubleColumn(rows, interval(&Interval::low)));
  frame.emplace_back("interval_high", optionalDoubleColumn(rows, interval(&Interval::high)));
  frame.emplace_back("p_adjusted", optionalDoubleColumn(rows, figure(&HistoryChange::pAdjusted)));
  frame.emplace_back("q_value", optionalDoubleColumn(rows, figure(&HistoryChange::qValue)));
  frame.emplace_back(
      "verdict",
      makeCategorical(
          numberColumn<int8_t>(rows, [](const Row& row) { return int8_t(row.change->verdict); }),
          listVerdicts(), true));
  return makeFrame(frame);
}

py::object makeHistoryValuesFrame(const History& history) {
  std::vector<ValueRow> rows;
  for (uint64_t run = 0; run < history.runs.size(); ++run)
    for (const HistorySeries& series : history.series)
      if (series.values[run])
        rows.push_back({&series, run});
  std::vector<std::pair<const char*, py::object>> frame =
      keyColumns(history, rows, [](const ValueRow& row) { return row.run; });
  frame.emplace_back("value", numberColumn<double>(rows, [](const ValueRow& row) {
                       return *row.series->values[row.run];
                     }));
  return makeFrame(frame);
}

py::list describeHistoryRuns(const History& history) {
  py::list runs;
  for (const HistoryRun& run : history.runs) {
    py::dict described;
    described["source"] = decodeText(run.source);
    described["created"] =
        run.createdUs ? py::object(py::int_(*run.createdUs)) : py::object(py::none());
    described["executions"] = run.executions;
    runs.append(described);
  }
  return runs;
}

py::list describeHistoryGraphs(const History& history) {
  py::list graphs;
  for (const HistoryGraph& graph : history.graphs) {
    py::list factors;
    for (const std::optional<double>& factor : graph.runFactor)
      factors.append(floatOrNone(factor));
    py::list changes;
    for (const HistoryChange& change : graph.runWide)
      changes.append(describeChange(change));
    py::dict described;
    described["graph"] = decodeText(graph.name);
    described["run_factor"] = factors;
    described["run_wide"] = changes;
    graphs.append(described);
  }
  return graphs;
}

py::dict describeHistoryTotals(const HistoryTotals& totals) {
  using Totals = HistoryTotals;
  return describeCounts(totals, {{"series", &Totals::series},
                                 {"changes", &Totals::changes},
                                 {"slower", &Totals::slower},
                                 {"faster", &Totals::faster},
                                 {"added", &Totals::added},
                                 {"removed", &Totals::removed},
                                 {"run_wide", &Totals::runWide},
                                 {"slower_in_gate", &Totals::slowerInGate},
                                 {"tested", &Totals::tested}});
}

} // namespace kvt::profiling
