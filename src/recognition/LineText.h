#pragma once

#include <QtCore/QString>
#include <vector>

#include "recognition/TextMarks.h"

namespace quillmere {

/// What the engine took a place of a line for, in pixels of the picture.
struct ReadSymbol {
  QString text;
  double left = 0, right = 0;
  bool beginsWord = false;
  bool isMark = false;  ///< told by its ink
};

/// The text of one line.
struct LineText {
  QString text;
  double advance = 0;  ///< of each character, where it is monospaced; otherwise 0
};

/// The text of `symbols`, which come from the left, mended by what the ink shows: `marks` in their own number, and
/// in monospaced text spaces in their number, quotes as they are typed, and zeros with a dot.
LineText lineText(const TextLine& line, const std::vector<TextMark>& marks, std::vector<ReadSymbol> symbols);

}  // namespace quillmere
