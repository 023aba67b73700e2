#pragma once

#include <vector>

#include "recognition/TextGrounds.h"

namespace quillmere {

/// A piece of connected ink: a letter, a part of one, or several that touch.
struct InkPiece {
  struct Run {
    int y, begin, end;
  };
  QRect box;
  TextGrounds::Ground ground = 0;
  uint32_t groundColor = 0;  ///< just beside the ink
  int contrast = 0;          ///< of the ink's strongest pixel to the ground
  std::vector<Run> runs;
};

/// A line of text, or a cell of a row, on one ground.
struct TextLine {
  QRect box;
  std::vector<InkPiece> pieces;
};

/// Finds where text stands, top to bottom and left to right; some of it may turn out to be icons.
/// `grounds` are those of `image`.
std::vector<TextLine> textLines(const QImage& image, const TextGrounds& grounds);

/// How different two colours are, in the channel where they differ most.
int colorDistance(uint32_t a, uint32_t b);

}  // namespace quillmere
