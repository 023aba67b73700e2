#pragma once

#include <vector>

#include "recognition/TextLines.h"

namespace quillmere {

/// Signs that are told by their shape alone, which the engine counts badly: `_`, `-`, `=` and the dots of a leader.
struct TextMark {
  QRect box;
  char16_t sign = u'-';
  bool operator==(const TextMark&) const = default;
};

/// Those of a line, from the left. Underscores that touch are one.
std::vector<TextMark> textMarks(const TextLine& line);

/// The line without rows of marks so long that the engine would stumble over them, in parts of the line's own height.
std::vector<TextLine> withoutLongRows(const TextLine& line, const std::vector<TextMark>& marks);

}  // namespace quillmere
