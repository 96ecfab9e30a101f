// Each argument arrives as a Python object and is checked here, so that a wrong one is named.
#include "Arguments.h"

#include <pybind11/stl/filesystem.h>

#include <set>

namespace kvt::profiling {

namespace {

[[noreturn]] void refuseType(const std::string& name, const std::string& what, py::handle value) {
  throw py::type_error(name + " takes " + what + ", not " +
                       py::str(py::type::handle_of(value).attr("__name__")).cast<std::string>());
}

bool isPathLike(py::handle value) {
  return PyUnicode_Check(value.ptr()) || PyBytes_Check(value.ptr()) ||
         py::hasattr(value, "__fspath__");
}

} // namespace

std::filesystem::path readPath(py::handle value, const std::string& name) {
  if (!isPathLike(value))
    refuseType(name, "a path (str or os.PathLike)", value);
  // os.fsdecode keeps undecodable bytes as the file system does.
  const py::object text = py::module_::import("os").attr("fsdecode")(value);
  return text.cast<std::filesystem::path>();
}

LogPaths readLogPaths(py::handle value, const std::string& name, bool allowRepeats) {
  if (isPathLike(value))
    return {{readPath(value, name)}, false};
  if (!py::hasattr(value, "__iter__"))
    refuseType(name, "a path (str or os.PathLike) or a list of paths", value);
  LogPaths logs{{}, true};
  std::set<std::filesystem::path> seen;
  for (const py::handle item : py::iter(value)) {
    const std::string itemName = name + "[" + std::to_string(logs.paths.size()) + "]";
    std::filesystem::path path = readPath(item, itemName);
    if (!seen.insert(path).second && !allowRepeats)
      throw py::value_error(name + " names " + path.string() + " twice");
    logs.paths.push_back(std::move(path));
  }
  if (logs.paths.empty())
    throw py::value_error(name + " holds no log");
  return logs;
}

int64_t readInteger(py::handle value, const std::string& name) {
  if (PyBool_Check(value.ptr()) || !PyIndex_Check(value.ptr()))
    refuseType(name, "an int", value);
  int overflow = 0;
  const py::object index = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
  if (!index)
    throw py::error_already_set();
  const long long result = PyLong_AsLongLongAndOverflow(index.ptr(), &overflow);
  if (overflow)
    throw py::value_error(name + " is beyond 64 bits: " + py::repr(value).cast<std::string>());
  return result;
}

double readNumber(py::handle value, const std::string& name) {
  if (PyBool_Check(value.ptr()) || !PyNumber_Check(value.ptr()) || PyComplex_Check(value.ptr()))
    refuseType(name, "a number (int or float)", value);
  const double result = PyFloat_AsDouble(value.ptr());
  if (result == -1 && PyErr_Occurred())
    throw py::error_already_set();
  return result;
}

bool readFlag(py::handle value, const std::string& name) {
  if (!PyBool_Check(value.ptr()))
    refuseType(name, "True or False", value);
  return value.ptr() == Py_True;
}

std::string readText(py::handle value, const std::string& name) {
  if (!PyUnicode_Check(value.ptr()))
    refuseType(name, "a str", value);
  return value.cast<std::string>();
}

} // namespace kvt::profiling
