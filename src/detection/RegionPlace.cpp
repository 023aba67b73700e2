#include "detection/RegionPlace.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

namespace quillmere::CapturedWindows {
namespace {

/// A shorter line, in blocks, votes for nothing.
constexpr int kShortestLine = 3;
/// So many places of each direction are tried.
constexpr size_t kMostPlaces = 40;
/// So many of the other direction with each of those.
constexpr size_t kMostAlong = 6;
/// Places this near are the same.
constexpr int kSamePlace = 6;
/// Blocks of each direction that must fit.
constexpr int kLeastHits = 6;
/// Of a side that tells of the place, in blocks.
constexpr int kShortestSide = 4;
/// How much worse any other place must be: a tenth of what fits, or so many blocks.
constexpr int kPartOfLead = 10;
constexpr int kMostLead = 12;
/// What a side that is there to the pixel is worth more than one that is a pixel off.
constexpr int kPartOfExact = 4;
/// How many places are looked at more closely.
constexpr size_t kMostLooked = 64;
/// What a side that goes on past its corner is worth, in blocks.
constexpr int kOverrun = 8;
/// One is an accident only among so many blocks that fit.
constexpr int kBlocksAnOverrun = 150;
/// A shift along one direction or along a diagonal by these must fit worse.
constexpr std::array kShifts{8, 12, 16, 20, 24, 32, 40, 48, 64, 96, 128};

/// Where these are highest, the highest first; one stands for those beside it.
std::vector<int> peaks(const std::vector<int>& values, size_t most) {
  std::vector<int> order;
  for (size_t place = 0; place < values.size(); ++place) {
    const auto first = values.begin() + static_cast<ptrdiff_t>(place - std::min<size_t>(place, kSamePlace));
    const auto last = values.begin() + static_cast<ptrdiff_t>(std::min(place + kSamePlace + 1, values.size()));
    if (values[place] > 0 && values[place] == *std::max_element(first, last)) order.push_back(static_cast<int>(place));
  }
  std::stable_sort(order.begin(), order.end(),
                   [&](int a, int b) { return values[static_cast<size_t>(a)] > values[static_cast<size_t>(b)]; });
  if (order.size() > most) order.resize(most);
  return order;
}

/// The likeliest places of the picture in one direction: `sides` are the windows' on the screen, `lines` the blocks of
/// each line in the picture, and the picture lies within `room`.
std::vector<int> places(const std::vector<int>& sides, const std::vector<int>& lines, int room) {
  const int length = static_cast<int>(lines.size()) - 1;
  const int most = room - length;
  std::vector<int> votes(static_cast<size_t>(std::max(most, 0)) + 1);
  for (const int side : sides) {
    const int from = std::max(0, side - most);
    const int to = std::min(length, side);
    for (int line = from; line <= to; ++line) {
      if (lines[static_cast<size_t>(line)] >= kShortestLine) {
        votes[static_cast<size_t>(side - line)] += lines[static_cast<size_t>(line)];
      }
    }
  }
  return peaks(votes, kMostPlaces);
}

/// A corner alone may be that of anything inside a window.
bool isMoreThanCorner(const StackEvidence& evidence) {
  int sides = 0;
  for (const OutlineEvidence& window : evidence.windows) {
    sides += static_cast<int>(std::count_if(window.sides.begin(), window.sides.end(),
                                            [](const auto& side) { return side.hits >= kShortestSide; }));
  }
  return sides > 2;
}

RegionPlace seenAt(const EdgeBlocks& edges, const WindowStack& stack, QPoint origin) {
  RegionPlace place{.origin = origin, .evidence = evidenceOf(edges, stack, origin)};
  place.score = place.evidence.score() + place.evidence.exact / kPartOfExact - place.evidence.outside / 2;
  return place;
}

void countOverruns(const EdgeBlocks& edges, const WindowStack& stack, RegionPlace& place) {
  place.overruns = overruns(edges, stack, place.origin);
  place.score -= kOverrun * place.overruns;
}

bool isFar(QPoint a, QPoint b) {
  return std::abs(a.x() - b.x()) > kSamePlace || std::abs(a.y() - b.y()) > kSamePlace;
}

bool isRival(const RegionPlace& other, const RegionPlace& best) {
  return best.score - other.score < std::min(best.evidence.hits / kPartOfLead, kMostLead);
}

/// The best of those around, to the pixel: a border's inner line is a few pixels from its outer one.
RegionPlace refined(const EdgeBlocks& edges, const WindowStack& stack, const RegionPlace& from) {
  RegionPlace best = from;
  for (int y = -kSamePlace; y <= kSamePlace; ++y) {
    for (int x = -kSamePlace; x <= kSamePlace; ++x) {
      RegionPlace other = seenAt(edges, stack, from.origin + QPoint(x, y));
      if (other.score < best.score) continue;
      countOverruns(edges, stack, other);
      if (other.score > best.score) best = other;
    }
  }
  return best;
}

/// Whether the picture would fit nearly as well if it were moved.
bool isLoose(const EdgeBlocks& edges, const WindowStack& stack, const RegionPlace& best) {
  for (const int amount : kShifts) {
    for (const QPoint shift : {QPoint(amount, 0), QPoint(0, amount), QPoint(amount, amount), QPoint(amount, -amount)}) {
      for (const QPoint by : {shift, -shift}) {
        RegionPlace moved = seenAt(edges, stack, best.origin + by);
        if (!isRival(moved, best)) continue;
        countOverruns(edges, stack, moved);
        if (isRival(moved, best)) return true;
      }
    }
  }
  return false;
}

/// How a window would lie along a line: from `begin` to `end` on the screen, its sides across it at `first` and `last`.
struct Extent {
  int begin, end;
  int first, last;
};

/// What of the windows' sides in one direction would be backed at `place`, when those across are at `across`.
int backed(const std::vector<Extent>& extents, const std::vector<std::vector<uint16_t>>& sums, int place, int across) {
  int score = 0;
  const int lines = static_cast<int>(sums.size());
  for (const Extent& extent : extents) {
    for (const int side : {extent.first - place, extent.last - place}) {
      if (side <= 0 || side >= lines) continue;
      const auto& sum = sums[static_cast<size_t>(side)];
      const int blocks = static_cast<int>(sum.size()) - 1;
      const int from = std::clamp((extent.begin - across) / EdgeBlocks::kBlock + 1, 0, blocks);
      const int to = std::clamp((extent.end - across) / EdgeBlocks::kBlock - 1, 0, blocks);
      if (to <= from) continue;
      const int hits = sum[static_cast<size_t>(to)] - sum[static_cast<size_t>(from)];
      // What is missing may be covered.
      score += 2 * hits - (to - from - hits);
    }
  }
  return score;
}

/// The best places in one direction, for one in the other.
std::vector<int> bestAlong(const std::vector<Extent>& extents, const std::vector<std::vector<uint16_t>>& sums, int room,
                           int across) {
  std::vector<int> scores;
  for (int place = 0; place <= room; ++place) scores.push_back(backed(extents, sums, place, across));
  return peaks(scores, kMostAlong);
}

}  // namespace

RegionSearch::RegionSearch(const EdgeBlocks& edges) : edges_(edges) {
  const auto summed = [](int length, int blocks, auto has) {
    Sums sums(static_cast<size_t>(length) + 1, std::vector<uint16_t>(static_cast<size_t>(blocks) + 1));
    for (int position = 0; position <= length; ++position) {
      auto& sum = sums[static_cast<size_t>(position)];
      for (int block = 0; block < blocks; ++block) {
        sum[static_cast<size_t>(block) + 1] =
            static_cast<uint16_t>(sum[static_cast<size_t>(block)] + (has(position, block) ? 1 : 0));
      }
    }
    return sums;
  };
  vertical_ = summed(edges.width(), edges.rowCount(), [&](int x, int row) { return edges.hasVertical(x, row); });
  horizontal_ =
      summed(edges.height(), edges.columnCount(), [&](int y, int column) { return edges.hasHorizontal(y, column); });
}

/// The likeliest in one direction each with the likeliest in the other then.
std::vector<QPoint> RegionSearch::candidates(const WindowStack& stack) const {
  std::vector<Extent> columns;
  std::vector<Extent> rows;
  std::vector<int> xs;
  std::vector<int> ys;
  for (const WindowStack::Window& window : stack.windows) {
    if (window.type != WindowStack::Window::Type::window) continue;
    const QRect& frame = window.frame;
    const int right = frame.x() + frame.width();
    const int bottom = frame.y() + frame.height();
    columns.push_back({frame.y(), bottom, frame.x(), right});
    rows.push_back({frame.x(), right, frame.y(), bottom});
    xs.insert(xs.end(), {frame.x(), right});
    ys.insert(ys.end(), {frame.y(), bottom});
  }
  const QSize room = stack.root - QSize(edges_.width(), edges_.height());
  std::vector<QPoint> all;
  for (const int x : places(xs, edges_.verticalLines(), stack.root.width())) {
    for (const int y : bestAlong(rows, horizontal_, room.height(), x)) all.emplace_back(x, y);
  }
  for (const int y : places(ys, edges_.horizontalLines(), stack.root.height())) {
    for (const int x : bestAlong(columns, vertical_, room.width(), y)) all.emplace_back(x, y);
  }
  return all;
}

std::optional<RegionPlace> RegionSearch::place(const WindowStack& stack) const {
  if (edges_.width() > stack.root.width() || edges_.height() > stack.root.height()) return std::nullopt;
  std::vector<RegionPlace> all;
  for (const QPoint origin : candidates(stack)) all.push_back(seenAt(edges_, stack, origin));
  const auto isBetter = [](const RegionPlace& a, const RegionPlace& b) { return a.score > b.score; };
  std::stable_sort(all.begin(), all.end(), isBetter);
  const auto looked = all.begin() + static_cast<ptrdiff_t>(std::min(all.size(), kMostLooked));
  std::for_each(all.begin(), looked, [&](RegionPlace& place) { countOverruns(edges_, stack, place); });
  std::stable_sort(all.begin(), looked, isBetter);
  if (all.empty()) return std::nullopt;
  RegionPlace best = refined(edges_, stack, all.front());
  if (best.evidence.verticalHits < kLeastHits || best.evidence.horizontalHits < kLeastHits || best.score <= 0) {
    return std::nullopt;
  }
  const bool hasRival = std::any_of(all.begin(), looked, [&](const RegionPlace& other) {
    return isFar(other.origin, best.origin) && isRival(other, best);
  });
  const bool isClean = best.overruns * kBlocksAnOverrun <= best.evidence.hits;
  best.isSure = isClean && isMoreThanCorner(best.evidence) && !hasRival && !isLoose(edges_, stack, best);
  return best;
}

}  // namespace quillmere::CapturedWindows
