#include "detection/OutlineEvidence.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace quillmere::CapturedWindows {
namespace {

constexpr int kBlock = EdgeBlocks::kBlock;
/// Round corners end a side; in points.
constexpr int kCorner = 14;
constexpr int kHundred = 100;
/// Of the whole outline and of each longer side, in hundredths.
constexpr int kEnough = 55;
constexpr int kLeastOfSide = 12;
constexpr int kLongSide = 4;  // blocks
/// So near the picture's border, in pixels, nothing tells a line from what it is beside.
constexpr int kBorder = 4;
/// A side that counts among those that must be there.
constexpr int kDrawn = 50;

/// Where a side is compared with what is beyond its end, in pixels from the corner.
constexpr int kNearReference = 20;
constexpr int kReference = 36;
constexpr int kNearBeyond = 2;
constexpr int kFarBeyond = 10;
/// So many pixels beyond it are no accident.
constexpr int kGoesOn = 3;
constexpr int kLeastStep = 2;
/// How many times weaker it may be there.
constexpr int kWeakest = 3;

/// A side of a window in the picture: between the columns or rows `position` - 1 and `position`, from `begin` to `end`.
struct Line {
  bool isVertical;
  int outwards;  ///< 1 or -1
  int position;
  int begin;
  int end;
};

std::array<Line, 4> linesOf(const QRect& frame, int corner) {
  const int right = frame.x() + frame.width();
  const int bottom = frame.y() + frame.height();
  const int top = frame.y() + corner, low = bottom - corner;
  const int left = frame.x() + corner, far = right - corner;
  return {{{true, -1, frame.x(), top, low},
           {true, 1, right, top, low},
           {false, -1, frame.y(), left, far},
           {false, 1, bottom, left, far}}};
}

/// Whether a window above hides the line from `begin` to `end`, or its own outline runs there.
bool isHidden(const Line& line, int begin, int end, const QRect& above) {
  const int first = line.isVertical ? above.x() : above.y();
  const int last = first + (line.isVertical ? above.width() : above.height());
  const int from = line.isVertical ? above.y() : above.x();
  const int to = from + (line.isVertical ? above.height() : above.width());
  return line.position >= first - 1 && line.position <= last + 1 && begin < to && end > from;
}

OutlineEvidence::Side sideOf(const EdgeBlocks& edges, const Line& line, const std::vector<QRect>& above) {
  OutlineEvidence::Side side;
  const int across = line.isVertical ? edges.width() : edges.height();
  const int along = line.isVertical ? edges.height() : edges.width();
  if (std::abs(line.position) <= kBorder || std::abs(line.position - across) <= kBorder) {
    side.isAtBorder = line.begin < along && line.end > 0;
    return side;
  }
  if (line.position < 0 || line.position > across) return side;
  const int begin = (std::max(line.begin, 0) + kBlock - 1) / kBlock;
  const int end = std::min(line.end, along) / kBlock;
  for (int block = begin; block < end; ++block) {
    const bool hides = std::any_of(above.begin(), above.end(), [&](const QRect& one) {
      return isHidden(line, block * kBlock, (block + 1) * kBlock, one);
    });
    if (hides) continue;
    ++side.blocks;
    const auto has = [&](int position) {
      return line.isVertical ? edges.hasVertical(position, block) : edges.hasHorizontal(position, block);
    };
    if (!has(line.position)) continue;
    ++side.hits;
    const bool begins = line.isVertical ? edges.beginsVertical(line.position, block, line.outwards)
                                        : edges.beginsHorizontal(line.position, block, line.outwards);
    if (begins) ++side.exact;
    const int next = line.position + line.outwards * kBorder;
    if (next > 0 && next < across && has(next)) ++side.outside;
  }
  return side;
}

bool isDrawn(const OutlineEvidence::Side& side) {
  return side.blocks > 0 && side.hits * kHundred >= kDrawn * side.blocks;
}

/// Whether a line that ends at `corner` coming from `inwards` of it is still there beyond.
template <typename Step>
bool goesOn(int corner, int inwards, Step step) {
  int strength = 0;
  for (int away = kNearReference; away < kReference; ++away) strength += step(corner + inwards * away);
  strength /= kReference - kNearReference;
  int found = 0;
  for (int away = kNearBeyond; away < kFarBeyond; ++away) {
    // Past the end itself, which may be a pixel off, too.
    const int there = step(corner - inwards * away - (inwards > 0 ? 0 : 1));
    if (there >= kLeastStep && kWeakest * there >= strength) ++found;
  }
  return strength >= kLeastStep && found >= kGoesOn;
}

}  // namespace

int OutlineEvidence::sum(int Side::*count, size_t from, size_t to) const {
  int all = 0;
  for (size_t i = from; i < to; ++i) all += sides[i].*count;
  return all;
}

bool OutlineEvidence::isEnough() const {
  if (blocks() == 0 || hits() * kHundred < kEnough * blocks()) return false;
  for (const Side& side : sides) {
    if (side.blocks >= kLongSide && side.hits * kHundred < kLeastOfSide * side.blocks) return false;
  }
  // What fills the picture from side to side is drawn by that.
  const bool hasVertical = isDrawn(sides[0]) || isDrawn(sides[1]) || (sides[0].isAtBorder && sides[1].isAtBorder);
  const bool hasHorizontal = isDrawn(sides[2]) || isDrawn(sides[3]) || (sides[2].isAtBorder && sides[3].isAtBorder);
  return hasVertical && hasHorizontal;
}

int overruns(const EdgeBlocks& edges, const WindowStack& stack, QPoint origin) {
  int count = 0;
  std::vector<QRect> above;
  for (size_t i = stack.windows.size(); i-- > 0;) {
    const WindowStack::Window& window = stack.windows[i];
    if (window.type == WindowStack::Window::Type::ground) continue;
    const QRect frame = window.frame.translated(-origin);
    if (window.type == WindowStack::Window::Type::window) {
      const int right = frame.x() + frame.width(), bottom = frame.y() + frame.height();
      for (const auto& [corner, inwards] :
           {std::pair(QPoint(frame.x(), frame.y()), QPoint(1, 1)), std::pair(QPoint(right, frame.y()), QPoint(-1, 1)),
            std::pair(QPoint(frame.x(), bottom), QPoint(1, -1)), std::pair(QPoint(right, bottom), QPoint(-1, -1))}) {
        const QRect around(corner - QPoint(kReference, kReference), corner + QPoint(kReference, kReference));
        const bool isHidden =
            std::any_of(above.begin(), above.end(), [&](const QRect& one) { return one.intersects(around); });
        if (isHidden) continue;
        if (goesOn(corner.y(), inwards.y(), [&, x = corner.x()](int y) { return edges.verticalStep(x, y); })) ++count;
        if (goesOn(corner.x(), inwards.x(), [&, y = corner.y()](int x) { return edges.horizontalStep(x, y); })) ++count;
      }
    }
    above.push_back(frame);
  }
  return count;
}

StackEvidence evidenceOf(const EdgeBlocks& edges, const WindowStack& stack, QPoint origin) {
  StackEvidence all;
  all.windows.resize(stack.windows.size());
  const QRect picture(0, 0, edges.width(), edges.height());
  const int corner = static_cast<int>(std::lround(kCorner * stack.scale));
  std::vector<QRect> above;
  std::vector<QRect> windows;  // among those
  // From the top, so that those above are known.
  for (size_t i = stack.windows.size(); i-- > 0;) {
    const WindowStack::Window& window = stack.windows[i];
    if (window.type == WindowStack::Window::Type::ground) continue;
    const QRect frame = window.frame.translated(-origin);
    if (!frame.intersects(picture)) continue;
    if (window.type == WindowStack::Window::Type::window) {
      OutlineEvidence& evidence = all.windows[i];
      const auto lines = linesOf(frame, corner);
      for (size_t side = 0; side < lines.size(); ++side) evidence.sides[side] = sideOf(edges, lines[side], above);
      evidence.isCovered =
          std::any_of(windows.begin(), windows.end(), [&](const QRect& one) { return one.intersects(frame); });
      windows.push_back(frame);
      all.hits += evidence.hits();
      all.blocks += evidence.blocks();
      all.exact += evidence.exact();
      all.outside += evidence.outside();
      all.verticalHits += evidence.verticalHits();
      all.horizontalHits += evidence.horizontalHits();
    }
    above.push_back(frame);
  }
  return all;
}

}  // namespace quillmere::CapturedWindows
