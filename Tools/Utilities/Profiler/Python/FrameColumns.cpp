// pandas' constructors, called once per column.
#include "FrameColumns.h"

namespace kvt::profiling {

py::str decodeText(std::string_view text) {
  PyObject* decoded =
      PyUnicode_DecodeUTF8(text.data(), py::ssize_t(text.size()), "surrogateescape");
  if (!decoded)
    throw py::error_already_set();
  return py::reinterpret_steal<py::str>(decoded);
}

py::object makeCategorical(py::array codes, const std::vector<std::string>& categories,
                           bool ordered) {
  py::list names;
  for (const std::string& name : categories)
    names.append(decodeText(name));
  return py::module_::import("pandas")
      .attr("Categorical")
      .attr("from_codes")(codes, py::arg("categories") = names, py::arg("ordered") = ordered);
}

py::object makeNullableIntegers(py::array_t<int64_t> values, py::array_t<bool> missing) {
  return py::module_::import("pandas").attr("arrays").attr("IntegerArray")(values, missing);
}

void requireInt64(uint64_t value, const std::string& what, const std::string& where) {
  if (value <= uint64_t(INT64_MAX))
    return;
  const std::string message =
      what + " " + std::to_string(value) + " " + where +
      " exceeds 2^63 - 1, the largest whole number a frame's int64 columns hold";
  PyErr_SetObject(PyExc_OverflowError, decodeText(message).ptr());
  throw py::error_already_set();
}

py::object floatOrNone(std::optional<double> value) {
  return value ? py::object(py::float_(*value)) : py::object(py::none());
}

py::object makeFrame(const std::vector<std::pair<const char*, py::object>>& columns) {
  py::dict data;
  for (const auto& [name, column] : columns)
    data[name] = column;
  return py::module_::import("pandas").attr("DataFrame")(data, py::arg("copy") = false);
}

} // namespace kvt::profiling
