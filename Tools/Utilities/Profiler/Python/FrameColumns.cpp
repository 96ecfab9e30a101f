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

py::object makeCategorical(py::array codes, const std::vector<std::string>& categories) {
  py::list names;
  for (const std::string& name : categories)
    names.append(decodeText(name));
  return py::module_::import("pandas")
      .attr("Categorical")
      .attr("from_codes")(codes, py::arg("categories") = names);
}

py::object makeNullableIntegers(py::array_t<uint64_t> values, py::array_t<bool> missing) {
  return py::module_::import("pandas").attr("arrays").attr("IntegerArray")(values, missing);
}

py::object makeFrame(const std::vector<std::pair<const char*, py::object>>& columns) {
  py::dict data;
  for (const auto& [name, column] : columns)
    data[name] = column;
  return py::module_::import("pandas").attr("DataFrame")(data, py::arg("copy") = false);
}

} // namespace kvt::profiling
