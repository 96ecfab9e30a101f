// Each graph's rows go to a file of their own, so that copying them out graph after graph keeps
// the event log's order (graphs in turn, executions in log order) without holding any of them.
#include "CsvExecutionSpill.h"

#include "CsvRows.h"
#include "model/EventBuilder.h"

#include <cerrno>
#include <cstring>
#include <iomanip>
#include <vector>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>
#endif

namespace kvt::profiling {
namespace {

using text_internal::graphIdentifier;
using text_internal::writeExecutionRows;

constexpr size_t copyBlockBytes = size_t(1) << 20;   // read back in blocks of this size
constexpr unsigned rowLevels = 2;                    // the rows show events and their sub-events
constexpr size_t spillBufferBytes = size_t(1) << 16; // fewer, larger writes than stdio's default

#if defined(_WIN32)
// Windows' tmpfile puts its file in the root of the drive, where users may not write; this one
// lies in the user's temporary folder and goes when it is closed. Failures leave errno set.
std::FILE* openTemporaryFile() {
  wchar_t folder[MAX_PATH + 1];
  wchar_t path[MAX_PATH];
  if (GetTempPathW(MAX_PATH + 1, folder) == 0 || GetTempFileNameW(folder, L"kvt", 0, path) == 0) {
    errno = GetLastError() == ERROR_ACCESS_DENIED ? EACCES : ENOENT;
    return nullptr;
  }
  int descriptor = -1;
  if (_wsopen_s(&descriptor, path, _O_RDWR | _O_TRUNC | _O_BINARY | _O_TEMPORARY, _SH_DENYRW,
                _S_IREAD | _S_IWRITE) != 0) {
    DeleteFileW(path);
    return nullptr;
  }
  std::FILE* file = _fdopen(descriptor, "r+b");
  if (!file)
    _close(descriptor); // removes the file
  return file;
}
#else
// An unnamed file that the system removes when it is closed or the process ends.
std::FILE* openTemporaryFile() {
  return std::tmpfile();
}
#endif

std::FILE* createTemporaryFile() {
  std::FILE* file = openTemporaryFile();
  if (file)
    std::setvbuf(file, nullptr, _IOFBF, spillBufferBytes);
  return file;
}

} // namespace

CsvExecutionSpill::CsvExecutionSpill(BackendCsvWriter writeBackendRows)
    : writeBackendRows(std::move(writeBackendRows)) {
  rows << std::fixed << std::setprecision(0);
}

void CsvExecutionSpill::add(const DispatchedExecution& execution) {
  if (!failureText.empty())
    return;
  GraphFile& graph = fileByGraph.getOrCreate(execution.graph);
  if (!graph.file) {
    graph.file.reset(createTemporaryFile());
    if (!graph.file) {
      fail("Could not create a temporary file for the CSV event log");
      return;
    }
    graph.identifier = graphIdentifier(fileByGraph.size() - 1, execution.graph);
  }
  rows.str(std::string());
  entry.duration = execution.duration;
  entry.timestamp = execution.timestamp;
  buildEventRecords(execution.events, rowLevels, entry.events);
  writeExecutionRows(rows, graph.identifier, entry, writeBackendRows);
  const std::string_view text = rows.view();
  if (std::fwrite(text.data(), 1, text.size(), graph.file.get()) != text.size()) {
    fail("Could not write the CSV event log to a temporary file");
    return;
  }
  graph.bytes += text.size();
}

bool CsvExecutionSpill::flush() {
  if (!failureText.empty())
    return false;
  for (auto& [name, graph] : fileByGraph)
    if (std::fflush(graph.file.get()) != 0)
      return fail("Could not write the CSV event log to a temporary file");
  return true;
}

bool CsvExecutionSpill::copyTo(std::ostream& out) {
  if (!flush())
    return false;
  for (auto& [name, graph] : fileByGraph)
    if (!copyFile(graph, out))
      return false;
  return true;
}

bool CsvExecutionSpill::copyFile(GraphFile& graph, std::ostream& out) {
  std::FILE* file = graph.file.get();
  std::rewind(file);
  std::vector<char> block(copyBlockBytes);
  for (uint64_t left = graph.bytes; left > 0;) {
    const size_t wanted = left < block.size() ? size_t(left) : block.size();
    if (std::fread(block.data(), 1, wanted, file) != wanted)
      return fail("Could not read back the CSV event log from a temporary file");
    out.write(block.data(), std::streamsize(wanted));
    left -= wanted;
  }
  // Later executions, should the log be parsed again, still go to the end.
  return std::fseek(file, 0, SEEK_END) == 0 ||
         fail("Could not read back the CSV event log from a temporary file");
}

bool CsvExecutionSpill::fail(const char* what) {
  const int error = errno;
  failureText = std::string(what) + ": " + (error != 0 ? std::strerror(error) : "unknown error");
  fileByGraph.clear(); // give the space back at once
  return false;
}

} // namespace kvt::profiling
