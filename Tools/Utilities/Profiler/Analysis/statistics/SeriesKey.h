// What identifies a series in a run: its graph, its kind and, for records and steps, its name,
// parent and occurrence. Every place that files, matches or looks up a series uses this key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kvt::profiling {

enum class SeriesKind { duration, queueWait, backend, span, wait };

inline constexpr int seriesKindCount = 5; // SeriesKind's values, duration to wait

// "duration", "queueWait", "backend", "span" or "wait".
std::string_view seriesKindName(SeriesKind kind);

// Example: the second Conv under execute in graph model, its span:
//   {"model", SeriesKind::span, "Conv", "execute", 1}.
struct SeriesKey {
  std::string graph;
  SeriesKind kind = SeriesKind::duration;
  std::string name;                   // the kind's name for duration and queueWait
  std::optional<std::string> parent;  // span and wait only
  std::optional<uint64_t> occurrence; // backend, span and wait only

  friend bool operator==(const SeriesKey&, const SeriesKey&) = default;
};

struct SeriesKeyHash {
  size_t operator()(const SeriesKey& key) const;
};

} // namespace kvt::profiling
