// Building goes through FlatBuffers' own parser and text generator only; a document is parsed
// whole, then each chunk inside it is printed and parsed again on its own.
#include "LogBuild.h"

#include "ChunkFileWriter.h"
#include "LogDump_generated.h"
#include "LogSchema.h"

#include <filesystem>
#include <fstream>
#include <sstream>

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

  // The same for a chunk held as a table in another parser's buffer.
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
  if (bytes > BuildLimits::maxInputBytes) {
    reason =
        "larger than the " + std::to_string(BuildLimits::maxInputBytes >> 20) + " MiB build reads";
    return false;
  }
  std::ostringstream content;
  content << in.rdbuf();
  text = std::move(content).str();
  return true;
}

class LogBuilder {
public:
  LogBuilder(const BuildOptions& options, ToolConsole& console)
      : options(options), console(console), output(options.outputPath) {}

  int run() {
    const bool built =
        (output.isOpen() || problem(options.outputPath, "cannot create it")) &&
        (canonicalizer.loadSchema() || problem("built-in schema", canonicalizer.error())) &&
        (options.chunkFiles ? buildChunkFiles() : buildDocument()) &&
        (output.close() || problem(options.outputPath, "cannot write it"));
    return built ? exitSuccess : exitBadInput;
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
    std::string text;
    std::string reason;
    if (!readText(path, text, reason))
      return problem(path, reason);
    flatbuffers::Parser document(chunkParsingOptions());
    if (!loadLogSchema(document, SchemaRoot::dumpDocument))
      return problem("built-in schema", document.error_);
    if (!document.Parse(text.c_str()))
      return problem(path, document.error_);
    text = {}; // the document's buffer holds everything from here on
    const auto* dump = flatbuffers::GetRoot<schema::LogDump>(document.builder_.GetBufferPointer());
    if (!dump->chunks())
      return true;
    for (flatbuffers::uoffset_t i = 0; i < dump->chunks()->size(); ++i) {
      if (!canonicalizer.buildFromTable(document, dump->chunks()->Get(i)->log()))
        return problem(path + ": chunk " + std::to_string(i), canonicalizer.error());
      if (!writeChunk())
        return false;
    }
    return true;
  }

  bool writeChunk() {
    return output.writeChunk(canonicalizer.buffer()) ||
           problem(options.outputPath, "cannot write it");
  }

  // Reports what went wrong with subject; always false, so that a step can end with it.
  bool problem(const std::string& subject, const std::string& text) {
    console.err << "kvt-profile-log build: " << subject << ": " << text << '\n';
    return false;
  }

  const BuildOptions& options;
  ToolConsole& console;
  ChunkFileWriter output;
  ChunkCanonicalizer canonicalizer;
};

} // namespace

int buildLog(const BuildOptions& options, ToolConsole& console) {
  return LogBuilder(options, console).run();
}

} // namespace kvt::profiling
