// The dump reads the log with the reader's own chunk framing and verifier, and prints each good
// chunk with FlatBuffers' text generator; only the document's outer frame is written here.
#include "LogDump.h"

#include "LogSchema.h"
#include "log/FlatBufferReaderUtil.h"
#include "log/LogChunkReader.h"

#include <filesystem>

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

int dumpLog(const DumpOptions& options, ToolConsole& console) {
  LogChunkReader reader;
  std::error_code fileError;
  const uint64_t fileBytes = std::filesystem::file_size(options.logPath, fileError);
  if (fileError || !reader.open(options.logPath)) {
    console.err << "kvt-profile-log dump: cannot read " << options.logPath << '\n';
    return exitBadInput;
  }
  flatbuffers::Parser printer(chunkPrintingOptions());
  if (!loadLogSchema(printer, SchemaRoot::chunk)) {
    console.err << "kvt-profile-log dump: built-in schema: " << printer.error_ << '\n';
    return exitBadInput;
  }

  // Starts the report of a bad chunk; the caller ends the line.
  auto report = [&](uint64_t chunk, uint64_t offset) -> std::ostream& {
    return console.err << "kvt-profile-log dump: " << options.logPath << ": chunk " << chunk
                       << " at offset " << offset << ' ';
  };
  DumpDocument document(console.out);
  bool allGood = true;
  uint64_t offset = 0;
  for (uint64_t chunk = 0;; ++chunk) {
    const LogChunkReader::Status status = reader.readNextChunk();
    if (status == LogChunkReader::Status::endOfFile) {
      if (offset < fileBytes) {
        report(chunk, offset) << "is cut short: " << fileBytes - offset
                              << " bytes, too few for a size prefix\n";
        allGood = false;
      }
      break;
    }
    if (status != LogChunkReader::Status::chunk) {
      report(chunk, offset)
          << (status == LogChunkReader::Status::oversized
                  ? "has a size prefix beyond the largest buffer a chunk may hold\n"
                  : "is too large to read into memory\n");
      allGood = false;
      break;
    }
    const std::span<const uint8_t> bytes = reader.chunk();
    const uint64_t bytesLeft = fileBytes - std::min<uint64_t>(fileBytes, offset + 4);
    if (bytes.size() > bytesLeft) {
      report(chunk, offset) << "is cut short: its size prefix says " << bytes.size()
                            << " bytes, the file holds " << bytesLeft << " more\n";
      allGood = false;
      break;
    }
    FlatBufferReaderUtil verifier;
    std::string text;
    if (!verifier.loadBuffer(bytes)) {
      report(chunk, offset) << "(" << bytes.size() << " bytes) fails verification\n";
      allGood = false;
    } else if (!flatbuffers::GenerateText(printer, bytes.data(), &text)) {
      report(chunk, offset) << "cannot be printed as JSON\n";
      allGood = false;
    } else {
      document.addChunk(offset, bytes.size(), text);
    }
    offset += 4 + bytes.size();
  }
  return allGood ? exitSuccess : exitBadInput;
}

} // namespace kvt::profiling
