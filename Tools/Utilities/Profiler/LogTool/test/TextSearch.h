// Counting the occurrences of a text, for tests that check how often something was printed.
#pragma once

#include <cstddef>
#include <string>

namespace kvt::profiling::testing {

inline size_t countOf(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

} // namespace kvt::profiling::testing
