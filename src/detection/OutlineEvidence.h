#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "detection/EdgeBlocks.h"
#include "reading/WindowStack.h"

namespace quillmere::CapturedWindows {

/// How much of what should be seen of a window's outline is backed by lines of the picture, in blocks.
struct OutlineEvidence {
  struct Side {
    int hits = 0;
    int exact = 0;            ///< of the hits: seen from outside a line begins there, to the pixel
    int outside = 0;          ///< a line runs just outside as well: this is a border's inner one
    int blocks = 0;           ///< of what is in the picture and not covered
    bool isAtBorder = false;  ///< it lies on the picture's border, where nothing tells
  };
  std::array<Side, 4> sides{};  ///< left, right, top, bottom
  bool isCovered = false;       ///< another window lies above a part of it

  int hits() const { return sum(&Side::hits, 0, 4); }
  int blocks() const { return sum(&Side::blocks, 0, 4); }
  int verticalHits() const { return sum(&Side::hits, 0, 2); }
  int horizontalHits() const { return sum(&Side::hits, 2, 4); }
  int exact() const { return sum(&Side::exact, 0, 4); }
  int outside() const { return sum(&Side::outside, 0, 4); }
  /// Whether the picture shows that the window stands there.
  bool isEnough() const;

 private:
  int sum(int Side::*count, size_t from, size_t to) const;
};

/// A state of the window system, compared with a picture that shows a part of the screen.
struct StackEvidence {
  std::vector<OutlineEvidence> windows;  ///< as in the state; of what is no window they are empty
  int hits = 0;
  int blocks = 0;
  int verticalHits = 0;
  int horizontalHits = 0;
  int exact = 0;
  int outside = 0;

  /// What misses is worth twice what fits.
  int score() const { return hits - 2 * (blocks - hits); }
};

/// How often a side seems to go on past a corner of its window, which a window's own sides never do: lines inside it,
/// and those of others, look like its sides from farther off.
int overruns(const EdgeBlocks& edges, const WindowStack& stack, QPoint origin);

/// `origin` is the picture's place on the screen.
StackEvidence evidenceOf(const EdgeBlocks& edges, const WindowStack& stack, QPoint origin);

}  // namespace quillmere::CapturedWindows
