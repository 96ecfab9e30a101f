// The base reader from log to CSV with the extended back-end report: the summary dumps OBJECT
// events to files while the CSV leaves them out.
#include "log/LogWriter.h"
#include "plugin/KvtProfileLogReader.h"
#include "support/StdoutCapture.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace kvt::profiling {
namespace {

using testing::readFile;
using testing::StdoutCapture;
using testing::TempDir;

EventSpec valueEvent(const char* identifier, uint64_t value, uint32_t unit) {
  EventSpec event;
  event.identifier = identifier;
  event.valueU64 = value;
  event.unit = unit;
  return event;
}

EventSpec objectEvent(const char* identifier, std::vector<uint8_t> bytes,
                      const std::filesystem::path& file) {
  EventSpec event;
  event.identifier = identifier;
  event.unit = 5;
  event.valueType = 4;
  event.valueBytes = std::move(bytes);
  event.message = file.string();
  return event;
}

MessageSpec message(int8_t methodType, uint64_t start, uint64_t end,
                    std::vector<EventSpec> events) {
  MessageSpec spec;
  spec.methodType = methodType;
  spec.stampTimestamp = start;
  spec.timing = TimingSpec{start, end};
  spec.events = std::move(events);
  return spec;
}

std::set<std::string> filesIn(const std::filesystem::path& dir) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(dir))
    names.insert(entry.path().filename().string());
  return names;
}

TEST(CsvReader, ExtendedReportDumpsObjectsThatTheCsvLeavesOut) {
  const TempDir logDir, outputDir;
  const std::filesystem::path out = outputDir.path();

  EventSpec dump = objectEvent("activation dump", {1, 2, 3}, out / "dump.bin");
  dump.children = {valueEvent("dump size", 3, 2), valueEvent("dump time", 7, 1)};
  EventSpec layer = valueEvent("layer", 500, 1);
  layer.children = {objectEvent("weights blob", {7}, out / "weights.bin")};
  MessageSpec execute = message(1, 1000, 1900, {dump, layer});
  execute.graphName = "g";
  ChunkSpec chunk;
  chunk.messages = {execute,
                    message(5, 5000, 5100, {objectEvent("teardown", {4, 0, 4}, out / "teardown")})};
  const std::string logPath = logDir.write("profile.log", buildLog(std::span(&chunk, 1)));

  KvtProfileLogReader reader(logPath, VisibilityLevel::keepAll);
  StdoutCapture printed;
  ASSERT_TRUE(reader.parseLog(true));
  ASSERT_TRUE(reader.writeOutputs((out / "events.csv").string()));

  EXPECT_EQ(readFile(out / "events.csv"),
            "kvt-profile-viewer version, v3.17.4.231102093015_41736\n"
            "kvt-net-run version, \n"
            "Backend version, \n"
            "Msg Timestamp, Message, Time, Unit of Measurement, Timing Source, Event Level, "
            "Event Identifier\n"
            "0,INIT,0,US,NETRUN,ROOT,null\n"
            "0,COMPOSE GRAPHS,0,US,NETRUN,ROOT,null\n"
            "5000,DE-INIT,100,US,NETRUN,ROOT,null\n"
            "1000,EXECUTE,900,US,NETRUN,ROOT,Graph 0: g\n"
            "1000,EXECUTE,3,BYTES,BACKEND,SUB-EVENT,dump size\n"
            "1000,EXECUTE,7,US,BACKEND,SUB-EVENT,dump time\n"
            "1000,EXECUTE,500,US,BACKEND,ROOT,layer\n");
  // The object with two sub-events is dumped once for itself and once per sub-event; an object
  // below an ordinary event is listed, not dumped.
  EXPECT_EQ(filesIn(out), (std::set<std::string>{"dump.bin", "dump_1.bin", "dump_2.bin",
                                                 "events.csv", "teardown"}));
  for (const char* name : {"dump.bin", "dump_1.bin", "dump_2.bin"})
    EXPECT_EQ(readFile(out / name), "\x01\x02\x03") << name;
  EXPECT_EQ(readFile(out / "teardown"), std::string("\x04\x00\x04", 3));
  EXPECT_NE(printed.text().find("Graph 0 (g):\n"
                                "    NetRun: 900 us\n"
                                "    Backend (layer): 500 us\n"
                                "        weights blob: 0 object\n\n"),
            std::string::npos)
      << printed.text();
}

} // namespace
} // namespace kvt::profiling
