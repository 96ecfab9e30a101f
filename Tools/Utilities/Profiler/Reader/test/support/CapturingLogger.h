// Registers a logger that collects the library's reports, expanded, for a test to inspect.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kvt::profiling::testing {

struct Report {
  uint32_t level = 0;
  std::string text;
  uint64_t timestampNs = 0;
};

// Registered for the scope of one test; one at a time.
class CapturingLogger {
public:
  explicit CapturingLogger(int32_t maxLevel = 5, uint64_t timeBase = 0);
  CapturingLogger(const CapturingLogger&) = delete;
  CapturingLogger& operator=(const CapturingLogger&) = delete;
  ~CapturingLogger();

  std::vector<Report> reports() const;
  // The texts of the reports of one level, in order.
  std::vector<std::string> texts(uint32_t level) const;
  bool contains(uint32_t level, std::string_view text) const;
  void clear();
};

} // namespace kvt::profiling::testing
