// The log facility's callback carries no context; a thread-local buffer gives each reading thread
// its own messages while the GIL is released.
#include "ReaderFailure.h"

#include "ReadThreads.h"
#include "plugin/Logging.h"

#include <pybind11/pybind11.h>

#include <cerrno>
#include <cstdio>
#include <memory>

namespace kvt::profiling {

namespace {

thread_local std::string threadMessages;

void keepReport(const char* format, uint32_t /*level*/, uint64_t /*timestampNs*/,
                va_list arguments) {
  va_list counting;
  va_copy(counting, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, counting);
  va_end(counting);
  if (length < 0)
    return;
  std::string text(size_t(length) + 1, '\0');
  std::vsnprintf(text.data(), text.size(), format, arguments);
  text.pop_back();
  if (!threadMessages.empty())
    threadMessages += '\n';
  threadMessages += text;
}

} // namespace

void catchReaderMessages() {
  auto logger = std::make_shared<Logger>();
  logger->callback = keepReport;
  logger->maxLevel = logError;
  loggerRegistry().add(loggerHandle, std::move(logger));
}

void clearReaderMessages() {
  threadMessages.clear();
}

void throwReaderFailure(const std::string& fallback) {
  throw LogFailure(threadMessages.empty() ? fallback : threadMessages);
}

void requireStandingRead(const LogReadResult& read, bool partial, std::string_view role) {
  if (read.stands(partial))
    return;
  std::string message = role.empty() ? "" : std::string(role) + ' ';
  message += describeLogFault(*read.fault);
  if (!threadMessages.empty())
    message += '\n' + threadMessages;
  throw LogFailure(message);
}

pybind11::object describePartial(const std::optional<LogReadResult>& partial) {
  if (!partial || !partial->fault)
    return pybind11::none();
  if (PyErr_WarnEx(PyExc_RuntimeWarning, describePartialRead(*partial).c_str(), 1) != 0)
    throw pybind11::error_already_set();
  pybind11::dict described;
  described["chunks_read"] = partial->chunksRead;
  described["bytes_read"] = partial->bytesRead;
  described["reason"] = describeLogFaultWithoutPath(*partial->fault);
  return described;
}

void requireExistingFile(const std::filesystem::path& path) {
  std::error_code ignored;
  if (std::filesystem::exists(path, ignored))
    return;
  errno = ENOENT;
  PyErr_SetFromErrnoWithFilename(PyExc_FileNotFoundError, path.c_str());
  throw pybind11::error_already_set();
}

void requireReadThreads() {
  if (!readThreadsSetting())
    throw pybind11::value_error(describeBadReadThreads());
}

} // namespace kvt::profiling
