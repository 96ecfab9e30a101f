// The chunks' JSON goes through FlatBuffers' own parser and text generator only; of a dump
// document, DumpDocumentReader reads the frame and hands over one chunk at a time.
#include "LogBuild.h"

#include "ChunkOutput.h"
#include "DumpDocumentReader.h"
#include "LogDump_generated.h"
#include "LogSchema.h"

#include <filesystem>
#include <fstream>

namespace kvt::profiling {

namespace {

// Parses chunks into their canonical layout.
class ChunkCanonicalizer {
public:
  ChunkCanonicalizer() : parser(chunkParsingOptions()) {}

  // False when the built-in schema is broken; error() tells why.
  bool loadSchema() { return loadLogSchema(parser, SchemaRoot::chunk); }

  // Parses a chunk's JSON into the canonical buffer; false with error() on a parse failure.
  bool buildFromJson(const char* json) {
    std::string printed;
    if (!parser.Parse(json) ||
        !flatbuffers::GenerateText(parser, parser.builder_.GetBufferPointer(), &printed))
      return false;
    return parser.Parse(printed.c_str());
  }

  // The same for a chunk held as a table in another parser's buffer, such as the log of a
  // DumpedChunk.
  bool buildFromTable(const flatbuffers::Parser& owner, const void* table) {
    std::string printed;
    return flatbuffers::GenerateTextFromTable(owner, table, chunkTableName, &printed) &&
           parser.Parse(printed.c_str());
  }

  std::span<const uint8_t> buffer() const {
    return {parser.builder_.GetBufferPointer(), parser.builder_.GetSize()};
  }
  const std::string& error() const { return parser.error_; }

private:
  flatbuffers::Parser parser;
};

bool readText(const std::string& path, std::string& text, std::string& reason) {
  std::error_code sizeError;
  const uint64_t bytes = std::filesystem::file_size(path, sizeError);
  std::ifstream in(path, std::ios::binary);
  if (sizeError || !in) {
    reason = "cannot read it";
    return false;
  }
  if (bytes > DumpDocumentReader::maxChunkTextBytes) {
    reason = "more than the " + std::to_string(DumpDocumentReader::maxChunkTextBytes >> 20) +
             " MiB of JSON a chunk may have";
    return false;
  }
  std::ostringstream content;
  content << in.rdbuf();
  text = std::move(content).str();
  return true;
}

class LogBuilder {
public:
  explicit LogBuilder(const BuildOptions& options) : options(options), output(options.outputPath) {}

  std::optional<std::string> run() {
    const bool built =
        (output.isOpen() || cannotWrite()) &&
        (canonicalizer.loadSchema() || problem("built-in schema", canonicalizer.error())) &&
        (options.chunkFiles ? buildChunkFiles() : buildDocument()) &&
        (output.commit() || cannotWrite());
    if (built)
      return std::nullopt;
    return failure;
  }

private:
  bool buildChunkFiles() {
    for (const std::string& path : options.inputPaths) {
      std::string text;
      std::string reason;
      if (!readText(path, text, reason))
        return problem(path, reason);
      if (!canonicalizer.buildFromJson(text.c_str()))
        return problem(path, canonicalizer.error());
      if (!writeChunk())
        return false;
    }
    return true;
  }

  bool buildDocument() {
    const std::string& path = options.inputPaths.front();
    std::ifstream in(path, std::ios::binary);
    if (!in)
      return problem(path, "cannot read it");
    flatbuffers::Parser chunkParser(chunkParsingOptions());
    if (!loadLogSchema(chunkParser, SchemaRoot::dumpedChunk))
      return problem("built-in schema", chunkParser.error_);
    DumpDocumentReader document(in);
    std::string text;
    for (uint64_t chunk = 0;; ++chunk) {
      const DumpDocumentReader::Status status = document.next(text);
      if (status == DumpDocumentReader::Status::end)
        return true;
      if (status == DumpDocumentReader::Status::error)
        return problem(path, document.error());
      const std::string subject = path + ": chunk " + std::to_string(chunk) + " (line " +
                                  std::to_string(document.chunkLine()) + ")";
      if (!chunkParser.Parse(text.c_str()))
        return problem(subject, chunkParser.error_);
      const auto* dumped =
          flatbuffers::GetRoot<schema::DumpedChunk>(chunkParser.builder_.GetBufferPointer());
      if (!canonicalizer.buildFromTable(chunkParser, dumped->log()))
        return problem(subject, canonicalizer.error());
      if (!writeChunk())
        return false;
    }
  }

  bool writeChunk() {
    return kvt::profiling::writeChunk(output, canonicalizer.buffer()) || cannotWrite();
  }

  bool cannotWrite() {
    failure = "cannot write " + options.outputPath + ": " + output.failure();
    return false;
  }

  // Keeps what went wrong with subject; always false, so that a step can end with it.
  bool problem(const std::string& subject, const std::string& text) {
    failure = subject + ": " + text;
    return false;
  }

  const BuildOptions& options;
  OutputFile output;
  ChunkCanonicalizer canonicalizer;
  std::string failure;
};

} // namespace

std::optional<std::string> buildLog(const BuildOptions& options) {
  return LogBuilder(options).run();
}

} // namespace kvt::profiling
