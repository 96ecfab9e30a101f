// The series key's names and hash.
#include "SeriesKey.h"

#include <functional>

namespace kvt::profiling {

std::string_view seriesKindName(SeriesKind kind) {
  switch (kind) {
  case SeriesKind::duration:
    return "duration";
  case SeriesKind::queueWait:
    return "queueWait";
  case SeriesKind::backend:
    return "backend";
  case SeriesKind::span:
    return "span";
  case SeriesKind::wait:
    return "wait";
  }
  return {};
}

size_t SeriesKeyHash::operator()(const SeriesKey& key) const {
  // A missing parent or occurrence hashes as "" or 0; equality still tells them apart.
  size_t hash = std::hash<std::string_view>{}(key.graph);
  auto mix = [&hash](size_t part) {
    hash ^= part + 0x9e3779b97f4a7c15 + (hash << 6) + (hash >> 2);
  };
  mix(size_t(key.kind));
  mix(std::hash<std::string_view>{}(key.name));
  mix(std::hash<std::string_view>{}(key.parent.value_or("")));
  mix(std::hash<uint64_t>{}(key.occurrence.value_or(0)));
  return hash;
}

} // namespace kvt::profiling
