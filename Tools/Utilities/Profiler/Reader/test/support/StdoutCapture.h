// Collects what the code under test prints on std::cout, for the scope of one test.
#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace kvt::profiling::testing {

class StdoutCapture {
public:
  StdoutCapture() : previous(std::cout.rdbuf(captured.rdbuf())) {}
  StdoutCapture(const StdoutCapture&) = delete;
  StdoutCapture& operator=(const StdoutCapture&) = delete;
  ~StdoutCapture() { std::cout.rdbuf(previous); }

  std::string text() const { return captured.str(); }

private:
  std::ostringstream captured;
  std::streambuf* previous;
};

} // namespace kvt::profiling::testing
