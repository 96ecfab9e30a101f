// Text from a log made safe to show on a terminal, and tables whose columns line up there.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace kvt::profiling::analysis_internal {

// text with every control character (C0, DEL, C1) and every byte that is not part of valid UTF-8
// written out as an escape, so that a log's names cannot move the cursor or recolour the
// terminal; the rest stays as it is. Example: "Mul", the escape character and "[2J ü" give
// Mul\x1b[2J ü, the escape written as four characters; U+009B gives \u009b, a lone byte 0xFF \xff.
std::string formatTerminalText(std::string_view text);

// The columns valid UTF-8 text takes on a terminal, counted as code points: "Mul ü ☃" takes 7.
size_t countTerminalColumns(std::string_view text);

// The rows (the first is the header) as columns padded to their widest cell, two blanks apart,
// each line opened by indent; every cell goes through formatTerminalText and is measured in code
// points. The first leftAligned columns are aligned left, the others right; the last column is
// never padded, so it may hold text of any width.
void writeAlignedRows(std::ostream& out, const std::vector<std::vector<std::string>>& rows,
                      size_t leftAligned, std::string_view indent);

} // namespace kvt::profiling::analysis_internal
