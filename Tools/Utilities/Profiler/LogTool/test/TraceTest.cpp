// The trace reader turns a synthesised linting log into a trace of every execution step, and
// refuses a basic one, whose steps lack the sub-events a trace is drawn from.
#include "TextSearch.h"
#include "ToolRun.h"
#include "plugin/Logging.h"
#include "support/CapturingLogger.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"
#include "trace/KvtProfileLogReaderChrometrace.h"

#include <gtest/gtest.h>

namespace kvt::profiling {
namespace {

using testing::CapturingLogger;
using testing::countOf;
using testing::readFile;
using testing::runTool;
using testing::StdoutCapture;
using testing::TempDir;

struct TraceRun {
  bool written = false;
  std::string trace;
  std::string statistics;
  std::vector<std::string> stepNames; // of the averaged executions, in trace order
};

TraceRun traceOfSynthesisedRun(const std::string& detail) {
  const TempDir dir;
  const std::string log = (dir.path() / "run.log").string();
  EXPECT_EQ(runTool({"synth", "-o", log, "--graphs", "2", "--executions", "3", "--steps", "4",
                     "--detail", detail})
                .exitCode,
            0);
  KvtProfileLogReaderChrometrace reader(log, VisibilityLevel{1});
  StdoutCapture stdoutText;
  EXPECT_TRUE(reader.parseLog(false));
  TraceRun run;
  const std::string trace = (dir.path() / "trace.json").string();
  run.written = reader.writeOutputs(trace);
  run.trace = readFile(trace);
  run.statistics = stdoutText.text();
  for (const auto& [graph, execution] : reader.eventModel().averageExecutionByGraph)
    for (const EventRecord& record : execution.events)
      for (const EventRecord& step : record.children)
        run.stepNames.push_back(step.identifier);
  return run;
}

TEST(SynthesisedTrace, LintingLogBecomesATraceOfEveryStep) {
  const TraceRun run = traceOfSynthesisedRun("linting");
  ASSERT_TRUE(run.written);
  EXPECT_NE(run.statistics.find("Execute Stats (Average):"), std::string::npos);
  ASSERT_EQ(run.stepNames.size(), 8u);
  size_t searchFrom = 0;
  for (const std::string& step : run.stepNames) {
    SCOPED_TRACE(step);
    const size_t at = run.trace.find("\"name\": \"" + step + "\"", searchFrom);
    ASSERT_NE(at, std::string::npos);
    searchFrom = at;
  }
  const size_t foreground = countOf(run.trace, "\"tid\": \"Foreground\"");
  EXPECT_GE(foreground, run.stepNames.size());
  EXPECT_EQ(countOf(run.trace, "\"tid\": \"Background\""), foreground);
  EXPECT_GE(countOf(run.trace, "\"Resources\": "), run.stepNames.size());
}

TEST(SynthesisedTrace, BasicLogIsRefused) {
  CapturingLogger logger;
  const TraceRun run = traceOfSynthesisedRun("basic");
  EXPECT_FALSE(run.written);
  EXPECT_EQ(logger.texts(logError),
            std::vector<std::string>{"Log file contains incompatible data! Please provide log "
                                     "file generated using the linting profile!"});
}

} // namespace
} // namespace kvt::profiling
