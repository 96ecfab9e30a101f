// The factor by which a whole run moved, as its steps tell it: on log values, the median over a
// graph's steps of the shift of each step's spans. One step that moved, however large its share,
// moves the median by at most one place, where the duration's shift would carry it whole.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace kvt::profiling {

// The shift of one series on log values: log(new median) - log(base median), each a nearest-rank
// median of a sorted sample (the median of the logs is the log of the median). None when a
// median is 0.
std::optional<double> logShift(std::span<const uint64_t> sortedBase,
                               std::span<const uint64_t> sortedNew);

class StepFactor {
public:
  // Leaving out the series judged, a median of 3 is not moved by one series that moved; a median
  // of 2 is their mean, and would be.
  static constexpr size_t minSeries = 4;

  // The log shifts of the graph's step series, in any order.
  explicit StepFactor(std::vector<double> logShifts);

  // Whether there are enough series for a factor: minSeries or more.
  bool exists() const { return sorted.size() >= minSeries; }

  // exp of the median of every log shift; 1 unless the factor exists. Example: {0, 0, 0.1, 0.26}
  // gives exp(0.05).
  double ratio() const { return ratioWithout(std::nullopt); }

  // exp of the median of the others when the series judged has the log shift own (one of those
  // given), which keeps a series from judging itself; 1 unless the factor exists. Example: {0, 0,
  // 0.1, 0.26} without 0.26 gives exp(0) = 1.
  double ratioWithout(std::optional<double> own) const;

  uint64_t seriesCount() const { return sorted.size(); }

private:
  std::vector<double> sorted;
};

} // namespace kvt::profiling
