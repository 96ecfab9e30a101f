// The module's arguments read from Python objects, with errors that name the argument and what
// it takes instead of pybind11's list of signatures.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace kvt::profiling {

namespace py = pybind11;

// The logs one argument names: a path (str, bytes or os.PathLike), or any other iterable of them.
struct LogPaths {
  std::vector<std::filesystem::path> paths;
  bool list = false; // given as an iterable, so the frame tells the logs apart
};

// TypeError "NAME takes WHAT, not TYPE" unless the value is of the kind; ValueError for an empty
// list or a path named twice.
std::filesystem::path readPath(py::handle value, const std::string& name);
LogPaths readLogPaths(py::handle value, const std::string& name);
// An int (or an object with __index__), not a bool; ValueError beyond 64 bits.
int64_t readInteger(py::handle value, const std::string& name);
// An int or float (or an object with __float__), not a bool.
double readNumber(py::handle value, const std::string& name);
// True or False.
bool readFlag(py::handle value, const std::string& name);

} // namespace kvt::profiling
