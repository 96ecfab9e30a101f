// pandas columns made from C++ values: numbers in numpy arrays filled here, text as categoricals,
// a missing number as pandas' own missing value. No Python object is made per row.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kvt::profiling {

namespace py = pybind11;

// Text of a log as Python text: UTF-8, any other byte kept as a lone surrogate (as os.fsdecode
// keeps the bytes of file names), so that no identifier makes a read fail.
py::str decodeText(std::string_view text);

// A categorical of codes into categories; code -1 is a missing value. An ordered one compares
// and sorts in the order of its categories.
py::object makeCategorical(py::array codes, const std::vector<std::string>& categories,
                           bool ordered = false);

// An Int64 column (pandas' nullable integers) of values, none where missing is true.
py::object makeNullableIntegers(py::array_t<int64_t> values, py::array_t<bool> missing);

// Raises OverflowError "WHAT VALUE WHERE exceeds 2^63 - 1, ..." when value does not fit the
// int64 columns of a frame. Example: "the largest value 18446744073709551615 in run.log, graph
// model, span Conv under execute, occurrence 0 exceeds 2^63 - 1, ...".
void requireInt64(uint64_t value, const std::string& what, const std::string& where);

// A categorical of text(row) over rows, categories in order of first appearance; text returns
// an optional string_view, none for a missing value.
template <typename Row, typename Text>
py::object textColumn(const std::vector<Row>& rows, Text text) {
  std::vector<std::string> categories;
  std::unordered_map<std::string_view, int32_t> codeOf;
  py::array_t<int32_t> codes(py::ssize_t(rows.size()));
  int32_t* code = codes.mutable_data();
  for (const Row& row : rows) {
    const std::optional<std::string_view> value = text(row);
    if (!value) {
      *code++ = -1;
      continue;
    }
    const auto [it, added] = codeOf.try_emplace(*value, int32_t(categories.size()));
    if (added)
      categories.emplace_back(*value);
    *code++ = it->second;
  }
  return makeCategorical(codes, categories);
}

template <typename Value, typename Row, typename Number>
py::array_t<Value> numberColumn(const std::vector<Row>& rows, Number number) {
  py::array_t<Value> column(py::ssize_t(rows.size()));
  Value* out = column.mutable_data();
  for (const Row& row : rows)
    *out++ = Value(number(row));
  return column;
}

// A float64 column, NaN where number(row) gives none.
template <typename Row, typename Number>
py::array_t<double> optionalDoubleColumn(const std::vector<Row>& rows, Number number) {
  return numberColumn<double>(rows, [&](const Row& row) {
    const std::optional<double> value = number(row);
    return value ? *value : std::nan("");
  });
}

// An Int64 column, missing where number(row) gives none; every figure must fit (requireInt64).
template <typename Row, typename Number>
py::object optionalIntegerColumn(const std::vector<Row>& rows, Number number) {
  py::array_t<int64_t> values(py::ssize_t(rows.size()));
  py::array_t<bool> missing(py::ssize_t(rows.size()));
  int64_t* value = values.mutable_data();
  bool* absent = missing.mutable_data();
  for (const Row& row : rows) {
    const std::optional<uint64_t> figure = number(row);
    *value++ = int64_t(figure.value_or(0));
    *absent++ = !figure;
  }
  return makeNullableIntegers(values, missing);
}

// A float, or None for a missing value, as JSON has null.
py::object floatOrNone(std::optional<double> value);

// A dict of counts, a key per field of counts: {"slower": counts.slower, ...}.
template <typename Counts>
py::dict describeCounts(const Counts& counts,
                        std::initializer_list<std::pair<const char*, uint64_t Counts::*>> fields) {
  py::dict described;
  for (const auto& [name, field] : fields)
    described[name] = counts.*field;
  return described;
}

// A frame of the named columns, in order, sharing their arrays.
py::object makeFrame(const std::vector<std::pair<const char*, py::object>>& columns);

} // namespace kvt::profiling
