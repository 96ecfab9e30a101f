// The output frame around the CSV event log and the summary, where the golden cases cannot go:
// the order of file and summary, and temporary files that run out of space.
#include "text/CsvLog.h"
#include "log/LogWriter.h"
#include "model/EventModel.h"
#include "plugin/KvtProfileLogReader.h"
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/EventRecords.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"
#include "text/BackendReport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <optional>
#include <sstream>

#if defined(_WIN32)
#include <cstdlib>
#else
#include <csignal>

#include <sys/resource.h>
#endif

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;
using testing::eventRecord;
using testing::readFile;
using testing::StdoutCapture;
using testing::TempDir;

ReportContext contextOf(const EventModel& model, const LogHeaderDetails& header) {
  return ReportContext{model, header, "",
                       [](std::ostream& out, const EventList& events) {
                         writeBackendReportLines(out, events, false);
                       },
                       writeBackendCsvRows};
}

// The model's outputs with no execution rows of its own.
bool writeOutputsOf(const std::string& csvPath, const EventModel& model,
                    const LogHeaderDetails& header = {}) {
  CsvExecutionSpill noExecutions(writeBackendCsvRows);
  return writeCsvOutputs(csvPath, contextOf(model, header), noExecutions, std::cout);
}

std::string csvLogOf(const EventModel& model) {
  const TempDir dir;
  const std::filesystem::path csvPath = dir.path() / "events.csv";
  const StdoutCapture summary;
  EXPECT_TRUE(writeOutputsOf(csvPath.string(), model));
  return readFile(csvPath);
}

// Stands in for the standard output and keeps the CSV file as it stood at the first print.
class CsvAtFirstPrint : public std::stringbuf {
public:
  explicit CsvAtFirstPrint(std::filesystem::path csvPath)
      : csvPath(std::move(csvPath)), previous(std::cout.rdbuf(this)) {}
  CsvAtFirstPrint(const CsvAtFirstPrint&) = delete;
  CsvAtFirstPrint& operator=(const CsvAtFirstPrint&) = delete;
  ~CsvAtFirstPrint() override { std::cout.rdbuf(previous); }

  std::string csv;

protected:
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    snapshot();
    return std::stringbuf::xsputn(text, count);
  }
  int_type overflow(int_type c) override {
    snapshot();
    return std::stringbuf::overflow(c);
  }

private:
  void snapshot() {
    if (!printed)
      csv = readFile(csvPath);
    printed = true;
  }

  std::filesystem::path csvPath;
  std::streambuf* previous;
  bool printed = false;
};

// A graph executed once: the summary has something to print.
EventModel modelOfARun() {
  EventModel model;
  model.averageExecutionByGraph.getOrCreate("g") = {1450, 31000, {eventRecord("execute", 1200)}};
  return model;
}

TEST(CsvOutputs, PrintsTheSummaryOnceTheCsvFileIsComplete) {
  const TempDir dir;
  const std::string csvPath = (dir.path() / "events.csv").string();
  const EventModel model = modelOfARun();
  CsvAtFirstPrint printed(csvPath);

  EXPECT_TRUE(writeOutputsOf(csvPath, model));

  const std::string expectedCsv = csvLogOf(model);
  EXPECT_EQ(readFile(csvPath), expectedCsv);
  EXPECT_EQ(printed.csv, expectedCsv);
  EXPECT_NE(printed.str(), "");
}

#if defined(_WIN32)
// The temporary folder is a missing one while it lives, so no temporary file can be made.
class NoTemporarySpace {
public:
  explicit NoTemporarySpace(const std::filesystem::path& missingFolder) {
    for (const char* variable : {"TMP", "TEMP"}) {
      const char* value = std::getenv(variable);
      previous.emplace_back(variable, value ? value : "");
      _putenv_s(variable, missingFolder.string().c_str());
    }
  }
  NoTemporarySpace(const NoTemporarySpace&) = delete;
  NoTemporarySpace& operator=(const NoTemporarySpace&) = delete;
  ~NoTemporarySpace() {
    for (const auto& [variable, value] : previous)
      _putenv_s(variable.c_str(), value.c_str());
  }

private:
  std::vector<std::pair<std::string, std::string>> previous;
};
constexpr const char* noTemporarySpaceReport =
    "Could not create a temporary file for the CSV event log: No such file or directory";
#else
// Files may grow to limitBytes while it lives; beyond it a write fails as on a full disk.
class NoTemporarySpace {
public:
  explicit NoTemporarySpace(rlim_t limitBytes) : previousSignal(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &previous);
    rlimit limited = previous;
    limited.rlim_cur = limitBytes;
    setrlimit(RLIMIT_FSIZE, &limited);
  }
  NoTemporarySpace(const NoTemporarySpace&) = delete;
  NoTemporarySpace& operator=(const NoTemporarySpace&) = delete;
  ~NoTemporarySpace() {
    setrlimit(RLIMIT_FSIZE, &previous);
    std::signal(SIGXFSZ, previousSignal);
  }

private:
  rlimit previous{};
  void (*previousSignal)(int);
};
constexpr const char* noTemporarySpaceReport =
    "Could not write the CSV event log to a temporary file: File too large";
#endif

// Execution rows wait in temporary files until the event log is written; when they cannot all
// be kept there, the reader writes no event log rather than one with rows missing, while the
// summary alone still prints.
TEST(CsvOutputs, RowsWithoutTemporarySpaceGiveNoFile) {
  struct Case {
    const char* what;
    size_t executions;
    bool noSpaceWhileWriting; // else only while parsing
  };
  const Case cases[] = {
      // Some 340 kB of rows: the temporary file's buffer spills while the log is parsed.
      {"no space once some rows were written", 2000, false},
      // Some 1.7 kB: every row is still in the buffer (a block, 4 kB or more), whose flush fails.
      {"a flush that fails at the end", 10, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const TempDir dir;
    MessageSpec execution;
    execution.methodType = 1;
    execution.graphName.emplace("g");
    execution.timing = TimingSpec{0, 10};
    execution.events = std::vector<EventSpec>(4);
    ChunkSpec chunk;
    chunk.messages = std::vector<MessageSpec>(c.executions, execution);
    const std::string log = dir.write("run.log", buildLog(std::span(&chunk, 1)));
    const std::string csvPath = (dir.path() / "events.csv").string();
    KvtProfileLogReader reader(log, VisibilityLevel::keepAll);
    CapturingLogger logger(logError);
#if defined(_WIN32)
    std::optional<NoTemporarySpace> limit(std::in_place, dir.path() / "missing");
#else
    std::optional<NoTemporarySpace> limit(std::in_place, 1024);
#endif
    ASSERT_TRUE(reader.parseLog(false));
    if (!c.noSpaceWhileWriting)
      limit.reset();
    {
      const StdoutCapture printed;
      EXPECT_FALSE(reader.writeOutputs(csvPath));
      EXPECT_EQ(printed.text(), "");
    }
    limit.reset();

    ASSERT_EQ(logger.texts(logError).size(), 1u);
    EXPECT_EQ(logger.texts(logError)[0],
              noTemporarySpaceReport + ("; no csvfile written: [" + csvPath + "]"));
    EXPECT_FALSE(std::filesystem::exists(csvPath));
    const StdoutCapture summary;
    EXPECT_TRUE(reader.writeOutputs(""));
    EXPECT_NE(summary.text(), "");
  }
}

} // namespace
} // namespace kvt::profiling
