// Reads a dump document one chunk at a time, so that a document of any size is built in the
// memory of one chunk. Only the document's frame, {"chunks": [CHUNK, ...]}, is read here; each
// CHUNK is handed on whole, as text, for the schema parser to read.
#pragma once

#include <array>
#include <cstdint>
#include <istream>
#include <string>

namespace kvt::profiling {

class DumpDocumentReader {
public:
  static constexpr size_t maxChunkTextBytes = size_t(1) << 30; // the JSON of one chunk

  enum class Status {
    chunk, // the next chunk's text is ready
    end,   // the document ended properly
    error  // the frame is broken; see error()
  };

  // Reads from in, which must stay alive while chunks are read. The frame may use bare or quoted
  // keys and // or /* */ comments, as the schema parser allows.
  explicit DumpDocumentReader(std::istream& in) : in(*in.rdbuf()) {}
  DumpDocumentReader(const DumpDocumentReader&) = delete;
  DumpDocumentReader& operator=(const DumpDocumentReader&) = delete;

  // Reads the next chunk's object, from its "{" to its "}", into text.
  Status next(std::string& text);

  // Where the latest chunk's text began, counted from line 1.
  uint64_t chunkLine() const { return textLine; }

  // What is wrong with the frame, with its line.
  const std::string& error() const { return problem; }

private:
  static constexpr size_t blockBytes = 1 << 16; // read from the stream at a time

  // The next character, or -1 at the end of the text.
  int peek() { return blockAt < filled || refill() ? (unsigned char)block[blockAt] : -1; }
  int take() {
    const int c = peek();
    blockAt += c >= 0;
    line += c == '\n';
    return c;
  }
  bool refill();
  void skipSpace();
  bool expect(char wanted, const char* what);
  bool readKey(std::string& key);
  bool readObject(std::string& text);
  Status fail(const std::string& what);

  std::streambuf& in;
  std::array<char, blockBytes> block;
  size_t blockAt = 0; // the next character of block
  size_t filled = 0;
  bool started = false;
  bool finished = false;
  uint64_t line = 1;
  uint64_t textLine = 0;
  std::string problem;
};

} // namespace kvt::profiling
