// A terminal acts on control characters wherever they come from, and counts a character, not a
// byte, as a column; C1 characters are controls too for many terminals (U+009B starts a
// sequence), so they are escaped with the C0 ones.
#include "TerminalText.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <optional>

namespace kvt::profiling::analysis_internal {

namespace {

struct CodePoint {
  uint32_t value = 0;
  size_t bytes = 0;
};

bool isContinuation(unsigned char byte) {
  return (byte & 0xC0) == 0x80;
}

// The code point that starts text, or none when its bytes are not valid UTF-8 (overlong forms,
// surrogates and values beyond U+10FFFF included).
std::optional<CodePoint> decodeCodePoint(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80)
    return CodePoint{lead, 1};
  size_t bytes = 0;
  uint32_t value = 0, lowest = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    bytes = 2, value = lead & 0x1F, lowest = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    bytes = 3, value = lead & 0x0F, lowest = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    bytes = 4, value = lead & 0x07, lowest = 0x10000;
  } else {
    return std::nullopt;
  }
  if (text.size() < bytes)
    return std::nullopt;
  for (size_t i = 1; i < bytes; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (!isContinuation(byte))
      return std::nullopt;
    value = value << 6 | (byte & 0x3F);
  }
  if (value < lowest || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF))
    return std::nullopt;
  return CodePoint{value, bytes};
}

bool isControl(uint32_t value) {
  return value < 0x20 || (value >= 0x7F && value <= 0x9F);
}

void appendEscape(std::string& out, const char* format, unsigned value) {
  char escaped[8];
  std::snprintf(escaped, sizeof escaped, format, value);
  out += escaped;
}

} // namespace

std::string formatTerminalText(std::string_view text) {
  std::string safe;
  safe.reserve(text.size());
  while (!text.empty()) {
    const std::optional<CodePoint> point = decodeCodePoint(text);
    if (!point) {
      appendEscape(safe, "\\x%02x", static_cast<unsigned char>(text[0]));
      text.remove_prefix(1);
      continue;
    }
    if (isControl(point->value))
      appendEscape(safe, point->value < 0x80 ? "\\x%02x" : "\\u%04x", point->value);
    else
      safe.append(text.substr(0, point->bytes));
    text.remove_prefix(point->bytes);
  }
  return safe;
}

size_t countTerminalColumns(std::string_view text) {
  return size_t(std::count_if(text.begin(), text.end(), [](char c) {
    return !isContinuation(static_cast<unsigned char>(c));
  }));
}

void writeAlignedRows(std::ostream& out, const std::vector<std::vector<std::string>>& rows,
                      size_t leftAligned, std::string_view indent) {
  std::vector<std::vector<std::string>> cells;
  std::vector<size_t> widths;
  for (const std::vector<std::string>& row : rows) {
    std::vector<std::string>& safeRow = cells.emplace_back();
    widths.resize(std::max(widths.size(), row.size()));
    for (size_t column = 0; column < row.size(); ++column) {
      safeRow.push_back(formatTerminalText(row[column]));
      widths[column] = std::max(widths[column], countTerminalColumns(safeRow.back()));
    }
  }
  for (const std::vector<std::string>& row : cells) {
    std::string line(indent);
    for (size_t column = 0; column < row.size(); ++column) {
      const std::string& cell = row[column];
      const bool last = column + 1 == row.size();
      const std::string padding(last ? 0 : widths[column] - countTerminalColumns(cell), ' ');
      if (column > 0)
        line += "  ";
      line += column < leftAligned ? cell + padding : padding + cell;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
  }
}

} // namespace kvt::profiling::analysis_internal
