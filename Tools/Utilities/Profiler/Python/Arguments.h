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

// An argument as Python passed it, checked by the read function of its kind; help() shows the
// kind's Python type in the function's signature instead of pybind11's "handle".
enum class ArgumentKind { path, logs, integer, number, flag, text };
template <ArgumentKind Kind> struct Argument { py::object value; };
using PathArgument = Argument<ArgumentKind::path>;
using LogsArgument = Argument<ArgumentKind::logs>;
using IntegerArgument = Argument<ArgumentKind::integer>;
using NumberArgument = Argument<ArgumentKind::number>;
using FlagArgument = Argument<ArgumentKind::flag>;
using TextArgument = Argument<ArgumentKind::text>;

// A function's result as Python receives it; help() shows it as a data frame.
struct FrameResult {
  py::object value;
};

// A function's result as Python receives it; help() shows it as kvtprofile.History, the named
// tuple of a history's two frames.
struct HistoryResult {
  py::object value;
};

// TypeError "NAME takes WHAT, not TYPE" unless the value is of the kind; ValueError for an empty
// list, or a path named twice unless repeats are allowed (a run of a history may come back).
std::filesystem::path readPath(py::handle value, const std::string& name);
LogPaths readLogPaths(py::handle value, const std::string& name, bool allowRepeats = false);
// An int (or an object with __index__), not a bool; ValueError beyond 64 bits.
int64_t readInteger(py::handle value, const std::string& name);
// An int or float (or an object with __float__), not a bool.
double readNumber(py::handle value, const std::string& name);
// True or False.
bool readFlag(py::handle value, const std::string& name);
// A str.
std::string readText(py::handle value, const std::string& name);

} // namespace kvt::profiling

namespace pybind11::detail {

template <kvt::profiling::ArgumentKind Kind> struct ArgumentTypeName;
template <> struct ArgumentTypeName<kvt::profiling::ArgumentKind::path> {
  static constexpr auto name = const_name("str | os.PathLike");
};
template <> struct ArgumentTypeName<kvt::profiling::ArgumentKind::logs> {
  static constexpr auto name = const_name("str | os.PathLike | Iterable[str | os.PathLike]");
};
template <> struct ArgumentTypeName<kvt::profiling::ArgumentKind::integer> {
  static constexpr auto name = const_name("int");
};
template <> struct ArgumentTypeName<kvt::profiling::ArgumentKind::number> {
  static constexpr auto name = const_name("float");
};
template <> struct ArgumentTypeName<kvt::profiling::ArgumentKind::flag> {
  static constexpr auto name = const_name("bool");
};
template <> struct ArgumentTypeName<kvt::profiling::ArgumentKind::text> {
  static constexpr auto name = const_name("str");
};

// Takes any object: the read functions check it, with messages that name the argument.
template <kvt::profiling::ArgumentKind Kind> struct type_caster<kvt::profiling::Argument<Kind>> {
  PYBIND11_TYPE_CASTER(kvt::profiling::Argument<Kind>, ArgumentTypeName<Kind>::name);
  bool load(handle source, bool) {
    value.value = reinterpret_borrow<object>(source);
    return true;
  }
  static handle cast(const kvt::profiling::Argument<Kind>& argument, return_value_policy, handle) {
    return argument.value.inc_ref();
  }
};

template <> struct type_caster<kvt::profiling::FrameResult> {
  PYBIND11_TYPE_CASTER(kvt::profiling::FrameResult, const_name("pandas.DataFrame"));
  bool load(handle, bool) { return false; }
  static handle cast(const kvt::profiling::FrameResult& frame, return_value_policy, handle) {
    return frame.value.inc_ref();
  }
};

template <> struct type_caster<kvt::profiling::HistoryResult> {
  PYBIND11_TYPE_CASTER(kvt::profiling::HistoryResult, const_name("kvtprofile.History"));
  bool load(handle, bool) { return false; }
  static handle cast(const kvt::profiling::HistoryResult& result, return_value_policy, handle) {
    return result.value.inc_ref();
  }
};

} // namespace pybind11::detail
