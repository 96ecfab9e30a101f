// Shared bins make the two histograms of a row comparable bar by bar; they span both runs. The
// margin is the comparison's own, in percent, so that the page draws the band each verdict used.
#include "PageComparison.h"

#include "RunFigures.h"
#include "statistics/SeriesList.h"

#include <algorithm>
#include <unordered_map>

namespace kvt::profiling {

namespace {

using SeriesIndex = std::unordered_map<SeriesKey, const Series*, SeriesKeyHash>;

SeriesIndex indexSeries(const RunStatistics& run) {
  SeriesIndex index;
  for (const GraphStatistics& graph : run.graphs)
    for (const SeriesRef& ref : listSeries(graph))
      index.emplace(makeSeriesKey(graph.name, ref), ref.series);
  return index;
}

const Series* findSeries(const SeriesIndex& index, const ComparisonRow& row) {
  const auto found = index.find({row.graph, row.kind, row.name, row.parent, row.occurrence});
  return found == index.end() ? nullptr : found->second;
}

std::optional<OverlaidHistograms> overlay(const Series* base, const Series* next) {
  if (!base || !next || base->values.empty() || next->values.empty())
    return std::nullopt;
  const uint64_t low = std::min(base->values.front(), next->values.front());
  const uint64_t high = std::max(base->values.back(), next->values.back());
  return OverlaidHistograms{binValues(base->values, low, high), binValues(next->values, low, high)};
}

} // namespace

PageComparison figurePageComparison(const RunStatistics& base, const RunStatistics& next,
                                    const ComparisonOptions& options) {
  Comparison comparison = compareRuns(base, next, options);
  PageComparison page{{}, {}, options, std::move(comparison.graphs), {}, comparison.totals, {}};
  const SeriesIndex baseIndex = indexSeries(base);
  const SeriesIndex nextIndex = indexSeries(next);
  for (ComparisonRow& row : comparison.rows) {
    PageComparisonRow& shown = page.rows.emplace_back();
    shown.overlay = overlay(findSeries(baseIndex, row), findSeries(nextIndex, row));
    if (row.base.p50 && *row.base.p50 > 0)
      shown.marginPercent = marginUnits(row, options) / double(*row.base.p50) * 100;
    if (row.needed)
      shown.needed = PageNeeded{row.needed->base, row.needed->next};
    shown.row = std::move(row);
  }
  return page;
}

} // namespace kvt::profiling
