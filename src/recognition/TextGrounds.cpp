#include "recognition/TextGrounds.h"

#include <algorithm>
#include <cstdlib>
#include <unordered_map>

#include "recognition/FaintInk.h"

namespace quillmere {
namespace {

/// Neighbours that differ by no more in any channel are of one area. Less, and the noise that JPEG puts around letters
/// would be ink; more, and the smoothed edges of faint letters would be ground.
constexpr int kTolerance = 16;
/// Two colours that take turns pixel by pixel may be this far apart; less than what text needs to be seen.
constexpr int kDither = 24;
/// The smallest ground, as behind a line of the smallest text.
constexpr int kSmallestSide = 10;
/// Nothing that is higher is a letter.
constexpr int kTallestLetter = 110;
/// How much of its box a ground fills, its letters notwithstanding.
constexpr double kFilled = 0.5;
/// A letter has two holes at most, none or one if it is broad, and none if its four sides are straight; what is written
/// on a ground makes holes in it.
constexpr int kLetterHoles = 2;
constexpr double kBroad = 1.6;
constexpr double kStraight = 0.55;
/// No stroke of a letter is as broad, so that no holes are asked for.
constexpr int kBroadestStroke = 160;

bool agree(uint32_t a, uint32_t b, int tolerance = kTolerance) {
  if (a == b) return true;
  const auto differs = [&](int shift) {
    return std::abs(static_cast<int>((a >> shift) & 255) - static_cast<int>((b >> shift) & 255)) > tolerance;
  };
  return !differs(0) && !differs(8) && !differs(16);
}

/// Whether `pixel` goes on from the one before it, or takes part in a dither with the two before it.
bool continues(uint32_t pixel, uint32_t before, const uint32_t* twoBefore) {
  return agree(pixel, before) || (twoBefore && pixel == *twoBefore && agree(pixel, before, kDither));
}

/// Shorter ones are dashes and bars of text.
constexpr int kShortestRule = 60;
constexpr int kRuleThickness = 4;

struct Area {
  int32_t parent;
  int32_t left, right, top, bottom;  ///< inclusive
  int32_t pixels = 0;
  int32_t euler = 0;  ///< one less the holes
};

/// How many pixels of an area lie on each side of its box.
struct Sides {
  int left = 0, right = 0, top = 0, bottom = 0;
};

int32_t root(std::vector<Area>& areas, int32_t area) {
  while (areas[area].parent != area) {
    areas[area].parent = areas[areas[area].parent].parent;
    area = areas[area].parent;
  }
  return area;
}

void join(std::vector<Area>& areas, int32_t a, int32_t b) {
  a = root(areas, a);
  b = root(areas, b);
  if (a == b) return;
  if (a > b) std::swap(a, b);
  Area& kept = areas[a];
  const Area& other = areas[b];
  kept.left = std::min(kept.left, other.left);
  kept.right = std::max(kept.right, other.right);
  kept.top = std::min(kept.top, other.top);
  kept.bottom = std::max(kept.bottom, other.bottom);
  kept.pixels += other.pixels;
  areas[b].parent = a;
}

int width(const Area& area) {
  return area.right - area.left + 1;
}
int height(const Area& area) {
  return area.bottom - area.top + 1;
}

/// Whether it is as small as a letter and still may be a ground.
bool isDoubtful(const Area& area) {
  if (height(area) > kTallestLetter || height(area) < kSmallestSide || width(area) < kSmallestSide) return false;
  return static_cast<double>(area.pixels) >= kFilled * width(area) * height(area);
}

/// Straight, an angle or a frame: it has about as many pixels as its sides are long.
bool isRule(const Area& area) {
  if (std::max(width(area), height(area)) < kShortestRule) return false;
  return area.pixels <= kRuleThickness * (width(area) + height(area));
}

bool isRectangle(const Area& area, const Sides& sides) {
  return std::min(sides.left, sides.right) >= kStraight * height(area) &&
         std::min(sides.top, sides.bottom) >= kStraight * width(area);
}

bool isGround(const Area& area, const Sides& sides) {
  if (height(area) > kTallestLetter) return width(area) >= kSmallestSide;
  if (!isDoubtful(area)) return false;
  const int holes = 1 - area.euler;
  return holes > kLetterHoles || width(area) > kBroadestStroke ||
         (holes > 0 && (width(area) > kBroad * height(area) || isRectangle(area, sides)));
}

/// Of the areas that may be grounds or letters. Holes are counted by Euler's formula: the pixels less the pairs side by
/// side and one above the other, plus the squares of four.
std::unordered_map<int32_t, Sides> measureDoubtful(std::vector<Area>& areas, const std::vector<int32_t>& labels,
                                                   int imageWidth) {
  std::unordered_map<int32_t, Sides> found;
  for (size_t i = 0; i < areas.size(); ++i) {
    if (areas[i].parent == static_cast<int32_t>(i) && isDoubtful(areas[i])) found[static_cast<int32_t>(i)];
  }
  for (auto& [label, sides] : found) {
    Area& area = areas[label];
    const auto has = [&, wanted = label](int x, int y) {
      return x <= area.right && y <= area.bottom &&
             labels[static_cast<size_t>(y) * static_cast<size_t>(imageWidth) + static_cast<size_t>(x)] == wanted;
    };
    for (int y = area.top; y <= area.bottom; ++y) {
      for (int x = area.left; x <= area.right; ++x) {
        if (!has(x, y)) continue;
        const bool hasRight = has(x + 1, y), hasBelow = has(x, y + 1);
        area.euler += 1 - (hasRight ? 1 : 0) - (hasBelow ? 1 : 0);
        if (hasRight && hasBelow && has(x + 1, y + 1)) ++area.euler;
        sides.left += x == area.left ? 1 : 0;
        sides.right += x == area.right ? 1 : 0;
        sides.top += y == area.top ? 1 : 0;
        sides.bottom += y == area.bottom ? 1 : 0;
      }
    }
  }
  return found;
}

}  // namespace

TextGrounds::TextGrounds(const QImage& image)
    : width_(image.width()),
      height_(image.height()),
      grounds_(static_cast<size_t>(image.width()) * static_cast<size_t>(image.height())) {
  std::vector<Area> areas;  // begins with one for each run of a row
  const auto rowOf = [&](int y) { return y < 0 ? nullptr : reinterpret_cast<const uint32_t*>(image.constScanLine(y)); };
  for (int y = 0; y < height_; ++y) {
    const auto *pixels = rowOf(y), *above = rowOf(y - 1), *twoAbove = rowOf(y - 2);
    Ground* labels = grounds_.data() + static_cast<size_t>(y) * static_cast<size_t>(width_);
    const Ground* labelsAbove = labels - width_;
    for (int begin = 0, end = 0; begin < width_; begin = end) {
      end = begin + 1;
      while (end < width_ && continues(pixels[end], pixels[end - 1], end > begin + 1 ? pixels + end - 2 : nullptr))
        ++end;
      const auto area = static_cast<int32_t>(areas.size());
      areas.push_back({area, begin, end - 1, y, y, end - begin});
      std::fill(labels + begin, labels + end, area);
      if (!above) continue;
      int32_t joinedAbove = -1;
      for (int x = begin; x < end; ++x) {
        if (labelsAbove[x] == joinedAbove || !continues(pixels[x], above[x], twoAbove ? twoAbove + x : nullptr))
          continue;
        joinedAbove = labelsAbove[x];
        join(areas, area, joinedAbove);
      }
    }
  }
  std::vector<int32_t> roots(areas.size());
  for (int32_t i = 0; i < static_cast<int32_t>(areas.size()); ++i) roots[i] = root(areas, i);
  for (Ground& label : grounds_) label = roots[label];
  const auto doubtful = measureDoubtful(areas, grounds_, width_);
  for (int32_t i = 0; i < static_cast<int32_t>(areas.size()); ++i) {
    const auto sides = doubtful.find(i);
    roots[i] = isRule(areas[i])                                                        ? kRule
               : isGround(areas[i], sides == doubtful.end() ? Sides() : sides->second) ? i
                                                                                       : kInk;
  }
  for (Ground& label : grounds_) label = roots[label];
  markFaintInk(image, grounds_);
}

}  // namespace quillmere
