// The frame's grammar is fixed and small; strings and comments are followed only so that a
// brace inside them is not taken for the end of a chunk. All validation of a chunk's content is
// the schema parser's.
#include "DumpDocumentReader.h"

#include <cctype>

namespace kvt::profiling {

namespace {

constexpr int endOfText = -1;

bool isKeyCharacter(int c) {
  return c != endOfText && (std::isalnum(c) || c == '_');
}

} // namespace

bool DumpDocumentReader::refill() {
  filled = size_t(in.sgetn(block.data(), std::streamsize(block.size())));
  blockAt = 0;
  return filled != 0;
}

void DumpDocumentReader::skipSpace() {
  for (;;) {
    const int c = peek();
    if (c != endOfText && std::isspace(c)) {
      take();
    } else if (c == '/') {
      take();
      if (peek() == '/') {
        while (peek() != endOfText && take() != '\n') {
        }
      } else if (peek() == '*') {
        take();
        for (int previous = 0, current = take(); current != endOfText; current = take()) {
          if (previous == '*' && current == '/')
            break;
          previous = current;
        }
      } else {
        return; // a lone "/" is left for the caller to refuse
      }
    } else {
      return;
    }
  }
}

bool DumpDocumentReader::expect(char wanted, const char* what) {
  skipSpace();
  if (peek() == wanted) {
    take();
    return true;
  }
  problem = "line " + std::to_string(line) + ": expected " + what;
  return false;
}

bool DumpDocumentReader::readKey(std::string& key) {
  skipSpace();
  const bool quoted = peek() == '"';
  if (quoted)
    take();
  while (isKeyCharacter(peek()))
    key += char(take());
  if (key.empty() || (quoted && take() != '"')) {
    problem = "line " + std::to_string(line) + ": expected the key \"chunks\"";
    return false;
  }
  return true;
}

bool DumpDocumentReader::readObject(std::string& text) {
  enum class Inside { code, string, escape, lineComment, blockComment };
  Inside inside = Inside::code;
  int depth = 0;
  int previous = 0;
  while (peek() != endOfText) {
    if (text.size() >= maxChunkTextBytes) {
      problem = "line " + std::to_string(textLine) + ": a chunk of more than " +
                std::to_string(maxChunkTextBytes >> 20) + " MiB of JSON";
      return false;
    }
    const int c = take();
    text += char(c);
    switch (inside) {
    case Inside::code:
      if (c == '"') {
        inside = Inside::string;
      } else if (c == '/' && (peek() == '/' || peek() == '*')) {
        inside = peek() == '/' ? Inside::lineComment : Inside::blockComment;
        text += char(take()); // so that "/*/" does not close the comment it opens
        previous = 0;
        continue;
      } else if (c == '{' || c == '[') {
        ++depth;
      } else if ((c == '}' || c == ']') && --depth == 0) {
        return true;
      }
      break;
    case Inside::string:
      inside = c == '\\' ? Inside::escape : c == '"' ? Inside::code : Inside::string;
      break;
    case Inside::escape:
      inside = Inside::string;
      break;
    case Inside::lineComment:
      inside = c == '\n' ? Inside::code : Inside::lineComment;
      break;
    case Inside::blockComment:
      inside = previous == '*' && c == '/' ? Inside::code : Inside::blockComment;
      break;
    }
    previous = c;
  }
  problem = "line " + std::to_string(textLine) + ": a chunk that does not end";
  return false;
}

DumpDocumentReader::Status DumpDocumentReader::next(std::string& text) {
  text.clear();
  if (finished)
    return Status::end;
  if (!started) {
    std::string key;
    if (!expect('{', "the document's \"{\"") || !readKey(key))
      return Status::error;
    if (key != "chunks")
      return fail("expected the key \"chunks\", not \"" + key + "\"");
    if (!expect(':', "\":\" after \"chunks\"") || !expect('[', "the \"[\" of the chunks"))
      return Status::error;
    skipSpace();
    started = true;
  } else {
    skipSpace();
    if (peek() == ',') {
      take();
      skipSpace();
    }
  }
  if (peek() == ']') {
    take();
    if (!expect('}', "the document's closing \"}\""))
      return Status::error;
    skipSpace();
    if (peek() != endOfText)
      return fail("text after the end of the document");
    finished = true;
    return Status::end;
  }
  if (peek() != '{')
    return fail("expected a chunk's \"{\" or the \"]\" that ends the chunks");
  textLine = line;
  if (!readObject(text))
    return Status::error;
  skipSpace();
  if (peek() != ',' && peek() != ']')
    return fail("expected \",\" or \"]\" after a chunk");
  return Status::chunk;
}

DumpDocumentReader::Status DumpDocumentReader::fail(const std::string& what) {
  problem = "line " + std::to_string(line) + ": " + what;
  return Status::error;
}

} // namespace kvt::profiling
