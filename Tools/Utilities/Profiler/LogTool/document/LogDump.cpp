// The dump reads the log with the reader's own chunk framing and verifier, and prints each good
// chunk with FlatBuffers' text generator; only the document's outer frame is written here.
#include "LogDump.h"

#include "LogSchema.h"
#include "log/FlatBufferReaderUtil.h"
#include "log/LogChunkReader.h"

namespace kvt::profiling {

namespace {

constexpr std::string_view chunkIndent = "      "; // a chunk's JSON sits three levels deep

// The generated text of a chunk, indented to its place in the document. Strings in it are
// escaped, so every line feed in it is one of the layout's own.
std::string indentChunkText(const std::string& text) {
  std::string indented;
  indented.reserve(text.size() + text.size() / 8);
  const size_t end = text.find_last_not_of('\n') + 1;
  for (size_t i = 0; i < end; ++i) {
    indented += text[i];
    if (text[i] == '\n')
      indented += chunkIndent;
  }
  return indented;
}

class DumpDocument {
public:
  explicit DumpDocument(std::ostream& out) : out(out) { out << "{\n  \"chunks\": ["; }
  ~DumpDocument() { out << (chunkCount ? "\n  ]\n}\n" : "]\n}\n"); }

  void addChunk(uint64_t offset, size_t size, const std::string& text) {
    out << (chunkCount++ ? ",\n" : "\n") << "    {\n      \"offset\": " << offset
        << ",\n      \"size\": " << size << ",\n      \"log\": " << indentChunkText(text)
        << "\n    }";
  }

private:
  std::ostream& out;
  size_t chunkCount = 0;
};

} // namespace

std::vector<std::string> dumpLog(const DumpOptions& options, std::ostream& out) {
  LogChunkReader reader;
  if (!reader.open(options.logPath))
    return {describeLogFault(reader.openFailure())};
  flatbuffers::Parser printer(chunkPrintingOptions());
  if (!loadLogSchema(printer, SchemaRoot::chunk))
    return {"built-in schema: " + printer.error_};

  std::vector<std::string> problems;
  auto report = [&](LogFaultKind kind) {
    problems.push_back(describeLogFault(recognizeText(reader.describeChunk(kind))));
  };
  DumpDocument document(out);
  for (uint64_t chunk = 0;; ++chunk) {
    switch (reader.readNextChunk(true)) {
    case LogChunkReader::Status::endOfFile:
      if (reader.place().bytesAfterPrefix != 0)
        report(LogFaultKind::prefixCutShort);
      else if (chunk == 0)
        problems.push_back(
            describeLogFault(makeLogFault(LogFaultKind::emptyFile, options.logPath)));
      return problems;
    case LogChunkReader::Status::oversized:
      report(LogFaultKind::badSizePrefix);
      return problems;
    case LogChunkReader::Status::cutShort:
      report(LogFaultKind::cutShort);
      return problems;
    case LogChunkReader::Status::outOfMemory:
      report(LogFaultKind::outOfMemory);
      return problems;
    case LogChunkReader::Status::chunk:
      break;
    }
    const std::span<const uint8_t> bytes = reader.chunk();
    FlatBufferReaderUtil verifier;
    std::string text;
    if (!verifier.loadBuffer(bytes))
      report(hasPlausibleRoot(bytes) ? LogFaultKind::failedVerification : LogFaultKind::badRoot);
    else if (!flatbuffers::GenerateText(printer, bytes.data(), &text))
      problems.push_back(options.logPath + ": chunk " + std::to_string(chunk) + " at offset " +
                         std::to_string(reader.place().offset) + " cannot be printed as JSON");
    else
      document.addChunk(reader.place().offset, bytes.size(), text);
  }
}

} // namespace kvt::profiling
