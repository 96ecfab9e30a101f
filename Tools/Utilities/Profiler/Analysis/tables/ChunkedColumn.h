// A column of numbers that grows in fixed chunks: no reallocation copies the values gathered so
// far, so a table of millions of rows costs its size and not twice it.
#pragma once

#include <cstddef>
#include <vector>

namespace kvt::profiling {

template <typename Value> class ChunkedColumn {
public:
  static constexpr size_t chunkValues = size_t(1) << 16; // 64 Ki values, 512 KiB of 8-byte ones

  void push(Value value) {
    if (chunks.empty() || chunks.back().size() == chunkValues) {
      chunks.emplace_back();
      chunks.back().reserve(chunkValues);
    }
    chunks.back().push_back(value);
    ++count;
  }

  size_t size() const { return count; }

  // Moves the values into out, which holds size() of them, each converted to Out; every chunk is
  // freed as soon as it is copied, and the column is left empty.
  template <typename Out> void moveInto(Out* out) {
    for (std::vector<Value>& chunk : chunks) {
      for (const Value value : chunk)
        *out++ = static_cast<Out>(value);
      std::vector<Value>().swap(chunk);
    }
    chunks.clear();
    count = 0;
  }

private:
  std::vector<std::vector<Value>> chunks;
  size_t count = 0;
};

} // namespace kvt::profiling
