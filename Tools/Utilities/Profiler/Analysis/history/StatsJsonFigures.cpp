// The document is small (a line per series), so it is parsed whole; every key the figures need
// is checked, because a document of another version must be refused, not read as zeros.
#include "StatsJsonFigures.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

namespace kvt::profiling {

namespace history_internal {

using Value = rapidjson::Value;

class StatsDocumentReader {
public:
  StatsDocumentReader(HistoryFigure figure, RunSeriesFigures& figures, std::string& problem)
      : figure(figure), figures(figures), problem(problem) {}

  bool readGraph(const Value& graph) {
    const Value* name = member(graph, "name", "graph");
    const Value* executions = member(graph, "executions", "graph");
    if (!name || !executions || !name->IsString() || !executions->IsUint64())
      return fail("a graph without its name or executions");
    graphName = name->GetString();
    figures.executions += executions->GetUint64();
    const Value* duration = member(graph, "duration", "graph");
    const Value* queueWait = member(graph, "queueWait", "graph");
    const Value* backend = member(graph, "backend", "graph");
    const Value* steps = member(graph, "steps", "graph");
    if (!duration || !queueWait || !backend || !steps || !backend->IsArray() || !steps->IsArray())
      return false;
    if (!add(SeriesKind::duration, "duration", nullptr, nullptr, *duration))
      return false;
    if (!queueWait->IsNull() &&
        !add(SeriesKind::queueWait, "queueWait", nullptr, nullptr, *queueWait))
      return false;
    for (const Value& record : backend->GetArray()) {
      const Value* value = member(record, "value", "back-end record");
      if (!value || !add(SeriesKind::backend, nullptr, nullptr, &record, *value))
        return false;
    }
    for (const Value& step : steps->GetArray()) {
      const Value* span = member(step, "span", "step");
      const Value* wait = member(step, "wait", "step");
      const Value* parent = member(step, "parent", "step");
      if (!span || !wait || !parent || !parent->IsString())
        return fail("a step without its span, wait or parent");
      if (!add(SeriesKind::span, nullptr, parent, &step, *span))
        return false;
      if (!wait->IsNull() && !add(SeriesKind::wait, nullptr, parent, &step, *wait))
        return false;
    }
    return true;
  }

  bool fail(const std::string& what) {
    if (problem.empty())
      problem = "not a stats JSON of this version: " + what;
    return false;
  }

  const Value* member(const Value& object, const char* key, const char* of) {
    if (!object.IsObject()) {
      fail(std::string("a ") + of + " that is no object");
      return nullptr;
    }
    const auto found = object.FindMember(key);
    if (found == object.MemberEnd()) {
      fail(std::string("a ") + of + " without \"" + key + "\"");
      return nullptr;
    }
    return &found->value;
  }

private:
  // A series keyed by its kind's name (fixedName) or by the record's name and occurrence.
  bool add(SeriesKind kind, const char* fixedName, const Value* parent, const Value* record,
           const Value& summary) {
    HistorySeriesKey key{graphName, kind, fixedName ? fixedName : "", std::nullopt, std::nullopt};
    if (record) {
      const Value* name = member(*record, "name", "series");
      const Value* occurrence = member(*record, "occurrence", "series");
      if (!name || !occurrence || !name->IsString() || !occurrence->IsUint64())
        return fail("a series without its name or occurrence");
      key.name = name->GetString();
      key.occurrence = occurrence->GetUint64();
    }
    if (parent)
      key.parent = std::string(parent->GetString());
    const Value* count = member(summary, "count", "summary");
    const Value* value = member(summary, std::string(historyFigureName(figure)).c_str(), "summary");
    if (!count || !value || !count->IsUint64() || !(value->IsNumber() || value->IsNull()))
      return fail("a summary without its count or " + std::string(historyFigureName(figure)));
    RunSeriesFigure run{std::move(key), std::nullopt};
    if (count->GetUint64() > 0 && value->IsNumber())
      run.value = value->GetDouble();
    figures.series.push_back(std::move(run));
    return true;
  }

  HistoryFigure figure;
  RunSeriesFigures& figures;
  std::string& problem;
  std::string graphName;
};

} // namespace history_internal

bool parseStatsJsonFigures(std::string_view text, HistoryFigure figure, RunSeriesFigures& figures,
                           std::string& problem) {
  rapidjson::Document document;
  document.Parse(text.data(), text.size());
  if (document.HasParseError()) {
    problem = std::string("not JSON: ") + rapidjson::GetParseError_En(document.GetParseError()) +
              " at byte " + std::to_string(document.GetErrorOffset());
    return false;
  }
  history_internal::StatsDocumentReader reader(figure, figures, problem);
  const rapidjson::Value* log = reader.member(document, "log", "document");
  const rapidjson::Value* skipFirst = reader.member(document, "skipFirst", "document");
  const rapidjson::Value* graphs = reader.member(document, "graphs", "document");
  if (!log || !skipFirst || !graphs)
    return false;
  if (!log->IsString() || !skipFirst->IsUint64() || !graphs->IsArray())
    return reader.fail("\"log\", \"skipFirst\" or \"graphs\" of the wrong type");
  for (const rapidjson::Value& graph : graphs->GetArray())
    if (!reader.readGraph(graph))
      return false;
  return true;
}

} // namespace kvt::profiling
