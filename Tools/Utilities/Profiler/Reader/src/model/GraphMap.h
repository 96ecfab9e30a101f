// A map from graph name to a value that iterates in first-insertion order, so that graphs are
// numbered in the order the log introduced them.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kvt::profiling {

template <typename Value> class GraphMap {
public:
  using Entry = std::pair<std::string, Value>;

  // The value of graph, created empty on first use.
  Value& getOrCreate(std::string_view graph) {
    auto it = index.find(graph);
    if (it != index.end())
      return entries[it->second].second;
    entries.emplace_back(std::string(graph), Value{});
    index.emplace(entries.back().first, entries.size() - 1);
    return entries.back().second;
  }

  // The value of graph, or null.
  const Value* find(std::string_view graph) const {
    auto it = index.find(graph);
    return it == index.end() ? nullptr : &entries[it->second].second;
  }

  void clear() {
    index.clear();
    entries.clear();
  }

  bool empty() const { return entries.empty(); }
  size_t size() const { return entries.size(); }
  auto begin() const { return entries.begin(); }
  auto end() const { return entries.end(); }
  auto begin() { return entries.begin(); }
  auto end() { return entries.end(); }

private:
  struct Hash {
    using is_transparent = void;
    size_t operator()(std::string_view key) const { return std::hash<std::string_view>{}(key); }
  };
  // The index keeps its own copies of the names, so growing entries never invalidates it.
  std::vector<Entry> entries;
  std::unordered_map<std::string, size_t, Hash, std::equal_to<>> index;
};

} // namespace kvt::profiling
