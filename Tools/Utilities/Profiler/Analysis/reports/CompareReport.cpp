// The comparison's table and JSON document.
#include "CompareReport.h"

#include "ReportText.h"

#include <algorithm>
#include <charconv>

namespace kvt::profiling {

namespace {

// A p-value to four significant digits, "0.0123" or "1.234e-09", which tiny values need.
std::string formatPValue(std::optional<double> value) {
  if (!value)
    return "null";
  char text[64];
  const auto result =
      std::to_chars(text, text + sizeof text, *value, std::chars_format::general, 4);
  return std::string(text, result.ptr);
}

// The table's grouping: slower, faster, then the others.
int tableGroup(Verdict verdict) {
  return verdict == Verdict::slower ? 0 : verdict == Verdict::faster ? 1 : 2;
}

std::string orDash(const std::string& text) {
  return text == "null" ? "-" : text;
}

void writeSide(std::ostream& out, const ComparedSide& side) {
  out << "{\"count\": " << side.count << ", \"p50\": " << formatOptional(side.p50) << '}';
}

void writeTotals(std::ostream& out, const ComparisonTotals& totals) {
  out << "{\"slower\": " << totals.slower << ", \"faster\": " << totals.faster
      << ", \"same\": " << totals.same << ", \"added\": " << totals.added
      << ", \"removed\": " << totals.removed << '}';
}

} // namespace

void writeComparisonTable(std::ostream& out, const Comparison& comparison) {
  std::vector<const ComparisonRow*> order;
  for (const ComparisonRow& row : comparison.rows)
    order.push_back(&row);
  std::stable_sort(order.begin(), order.end(), [](const ComparisonRow* a, const ComparisonRow* b) {
    return tableGroup(a->verdict) < tableGroup(b->verdict);
  });
  std::vector<std::vector<std::string>> rows{{"verdict", "graph", "series", "name", "parent",
                                              "occurrence", "base n", "base p50", "new n",
                                              "new p50", "change %", "p-value"}};
  for (const ComparisonRow* row : order)
    rows.push_back({std::string(verdictName(row->verdict)), row->graph,
                    std::string(seriesKindName(row->kind)), row->name, row->parent.value_or("-"),
                    orDash(formatOptional(row->occurrence)), std::to_string(row->base.count),
                    orDash(formatOptional(row->base.p50)), std::to_string(row->next.count),
                    orDash(formatOptional(row->next.p50)),
                    orDash(formatFixed(row->changePercent, 1)), orDash(formatPValue(row->pValue))});
  writeAlignedRows(out, rows, 5, "");
  const ComparisonTotals& totals = comparison.totals;
  out << "\n"
      << totals.slower << " slower, " << totals.faster << " faster, " << totals.same << " same, "
      << totals.added << " added, " << totals.removed << " removed\n";
}

void writeComparisonJson(std::ostream& out, const Comparison& comparison,
                         const std::string& basePath, const std::string& newPath,
                         double thresholdPercent) {
  out << "{\n  \"base\": ";
  writeJsonString(out, basePath);
  out << ",\n  \"new\": ";
  writeJsonString(out, newPath);
  out << ",\n  \"threshold\": " << formatFixed(thresholdPercent) << ",\n  \"rows\": [";
  for (size_t i = 0; i < comparison.rows.size(); ++i) {
    const ComparisonRow& row = comparison.rows[i];
    out << (i ? ",\n" : "\n") << "    {\"graph\": ";
    writeJsonString(out, row.graph);
    out << ", \"series\": \"" << seriesKindName(row.kind) << "\", \"name\": ";
    writeJsonString(out, row.name);
    out << ", \"parent\": ";
    if (row.parent)
      writeJsonString(out, *row.parent);
    else
      out << "null";
    out << ", \"occurrence\": " << formatOptional(row.occurrence) << ", \"base\": ";
    writeSide(out, row.base);
    out << ", \"new\": ";
    writeSide(out, row.next);
    out << ", \"changePercent\": " << formatFixed(row.changePercent)
        << ", \"pValue\": " << formatPValue(row.pValue) << ", \"verdict\": \""
        << verdictName(row.verdict) << "\"}";
  }
  out << (comparison.rows.empty() ? "]" : "\n  ]") << ",\n  \"totals\": ";
  writeTotals(out, comparison.totals);
  out << "\n}\n";
}

} // namespace kvt::profiling
