// The trace as a JSON document, serialised by the pretty writer.
#include "TraceDocument.h"

#include <ostream>

#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include "TraceEvents.h"
#include "plugin/Logging.h"

namespace kvt::profiling {

namespace {

using Allocator = rapidjson::Document::AllocatorType;

rapidjson::Value copiedString(const std::string& text, Allocator& allocator) {
  return rapidjson::Value(text.c_str(), rapidjson::SizeType(text.size()), allocator);
}

// Members in a fixed order; "cname" and "Resources" only when they have text.
void appendTraceEvent(rapidjson::Value& array, Allocator& allocator, const TraceEvent& event) {
  rapidjson::Value object(rapidjson::kObjectType);
  object.AddMember("name", copiedString(event.name, allocator), allocator);
  object.AddMember("pid", 0, allocator);
  object.AddMember("tid", copiedString(event.foreground ? "Foreground" : "Background", allocator),
                   allocator);
  object.AddMember("ph", copiedString("X", allocator), allocator);
  object.AddMember("ts", rapidjson::Value(uint64_t(event.start)), allocator);
  object.AddMember("dur", rapidjson::Value(uint64_t(event.duration)), allocator);
  if (!event.colour.empty())
    object.AddMember("cname", copiedString(event.colour, allocator), allocator);
  rapidjson::Value args(rapidjson::kObjectType);
  args.AddMember("Duration", rapidjson::Value(uint64_t(event.duration)), allocator);
  if (!event.resources.empty())
    args.AddMember("Resources", copiedString(event.resources, allocator), allocator);
  object.AddMember("args", args, allocator);
  array.PushBack(object, allocator);
}

// The "traceEvents" member goes in only once every event is built, so an incompatible log
// leaves the document without it.
bool buildTraceDocument(const GraphMap<ExecutionEntry>& averageExecutionByGraph,
                        rapidjson::Document& document) {
  const std::optional<std::vector<TraceEvent>> events = buildTraceEvents(averageExecutionByGraph);
  if (!events)
    return false;
  Allocator& allocator = document.GetAllocator();
  rapidjson::Value array(rapidjson::kArrayType);
  for (const TraceEvent& event : *events)
    appendTraceEvent(array, allocator, event);
  document.AddMember("traceEvents", array, allocator);
  return true;
}

// The whole text is in buffer before any of it is written; the document goes as soon as the
// text is made, so that the two largest forms of the trace are never held together with a third.
bool serializeTraceDocument(const GraphMap<ExecutionEntry>& averageExecutionByGraph,
                            rapidjson::StringBuffer& buffer) {
  rapidjson::Document document(rapidjson::kObjectType);
  if (!buildTraceDocument(averageExecutionByGraph, document))
    return false;
  rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
  // The writer stops at the first value it refuses and leaves half a document behind.
  if (!document.Accept(writer) || !writer.IsComplete()) {
    logMessage(logError, "Trace document could not be written.");
    return false;
  }
  return true;
}

} // namespace

bool writeTraceJson(const GraphMap<ExecutionEntry>& averageExecutionByGraph, std::ostream& out) {
  rapidjson::StringBuffer buffer;
  if (!serializeTraceDocument(averageExecutionByGraph, buffer))
    return false;
  // A full disk shows only in the stream's state, often not before the last flush.
  out.write(buffer.GetString(), std::streamsize(buffer.GetSize()));
  out << "\n" << std::flush;
  if (!out) {
    logMessage(logError, "Trace document could not be written.");
    return false;
  }
  return true;
}

} // namespace kvt::profiling
