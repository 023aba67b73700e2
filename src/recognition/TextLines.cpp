#include "recognition/TextLines.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <numeric>

#include "recognition/CrowdedInk.h"

namespace quillmere {
namespace {

constexpr int kTallest = 120;
/// Ink this low is a rule when it is long.
constexpr int kRuleThickness = 4;
constexpr int kLongestDash = 64;
/// A bar of text is not higher.
constexpr int kTallestBar = 60;
/// Less contrast is decoration.
constexpr int kFaintest = 16;
constexpr int kSmallestSolid = 10;
/// More pieces are no text; looking for lines among them would take seconds.
constexpr size_t kMostPieces = 30000;
constexpr int kLowestLine = 5;
/// Alone, nothing of this size is a word: the corner of a field.
constexpr int kSpeck = 6;
/// How many times their height two pieces of one line may be apart.
constexpr double kGap = 1.5;
/// How much of the taller one's height two neighbours have in common at least.
constexpr double kLeastCommon = 0.42;

/// How much of the ink's sides its ground must touch, in percent.
constexpr int kEnclosed = 80;

/// Dots, accents, quotes and dashes have at most this size, in heights of their line, and are at most so far away.
constexpr size_t kSmallPieces = 3;
constexpr double kSmallHeight = 0.6;
constexpr double kSmallWidth = 1;
constexpr double kReachAbove = 0.35;
constexpr double kReachBeside = 1.2;
/// The branches of a tree, a graph's curve: large and nearly empty.
constexpr int kSmallestSparse = 900;
constexpr double kSparse = 0.12;

class Groups {
 public:
  explicit Groups(size_t count) : parents_(count) { std::iota(parents_.begin(), parents_.end(), size_t{0}); }
  size_t root(size_t item) {
    while (parents_[item] != item) item = parents_[item] = parents_[parents_[item]];
    return item;
  }
  void join(size_t a, size_t b) { parents_[root(a)] = root(b); }

 private:
  std::vector<size_t> parents_;
};

std::vector<InkPiece> inkPieces(const TextGrounds& grounds) {
  std::vector<InkPiece::Run> runs;
  std::vector<size_t> rowBegins;
  for (int y = 0; y < grounds.height(); ++y) {
    rowBegins.push_back(runs.size());
    const auto* row = grounds.row(y);
    for (int x = 0; x < grounds.width(); ++x) {
      if (row[x] != TextGrounds::kInk) continue;
      const int begin = x;
      while (x < grounds.width() && row[x] == TextGrounds::kInk) ++x;
      runs.push_back({y, begin, x});
    }
  }
  rowBegins.push_back(runs.size());
  Groups groups(runs.size());
  for (int y = 1; y < grounds.height(); ++y) {
    size_t above = rowBegins[y - 1];
    for (size_t run = rowBegins[y]; run < rowBegins[y + 1]; ++run) {
      // Corners count as contact.
      while (above < rowBegins[y] && runs[above].end < runs[run].begin) ++above;
      for (size_t other = above; other < rowBegins[y] && runs[other].begin <= runs[run].end; ++other) {
        groups.join(run, other);
      }
    }
  }
  std::vector<InkPiece> pieces;
  std::vector<size_t> pieceOf(runs.size(), SIZE_MAX);
  for (size_t run = 0; run < runs.size(); ++run) {
    size_t& piece = pieceOf[groups.root(run)];
    if (piece == SIZE_MAX) {
      piece = pieces.size();
      pieces.emplace_back();
    }
    pieces[piece].runs.push_back(runs[run]);
    pieces[piece].box |= QRect(QPoint(runs[run].begin, runs[run].y), QPoint(runs[run].end - 1, runs[run].y));
  }
  return pieces;
}

/// The frame of a field, a button or a check box.
bool isFrame(const InkPiece& piece) {
  const QRect& box = piece.box;
  constexpr int kSmallestFrame = 8;
  if (box.width() < kSmallestFrame || box.height() < kSmallestFrame) return false;
  int64_t ink = 0;
  int top = 0, bottom = 0, left = 0, right = 0;
  const auto inRow = [](const InkPiece::Run& run) { return run.end - run.begin; };
  for (const InkPiece::Run& run : piece.runs) {
    ink += inRow(run);
    if (run.y < box.top() + 2) top = std::max(top, inRow(run));
    if (run.y > box.bottom() - 2) bottom = std::max(bottom, inRow(run));
    if (run.begin < box.left() + 2) ++left;
    if (run.end > box.right() - 1) ++right;
  }
  const auto most = [](int part, int whole) { return part * 10 >= whole * 7; };
  return most(top, box.width()) && most(bottom, box.width()) && most(left, box.height()) && most(right, box.height()) &&
         ink * 2 < static_cast<int64_t>(box.width()) * box.height();
}

bool isRule(QSize size) {
  return (size.height() <= kRuleThickness && size.width() > kLongestDash) ||
         (size.width() <= kRuleThickness && size.height() > kTallestBar);
}

int64_t inkOf(const InkPiece& piece) {
  return std::accumulate(piece.runs.begin(), piece.runs.end(), int64_t{0},
                         [](int64_t sum, const InkPiece::Run& run) { return sum + run.end - run.begin; });
}

bool isSparse(const InkPiece& piece) {
  const int64_t room = static_cast<int64_t>(piece.box.width()) * piece.box.height();
  return room >= kSmallestSparse && static_cast<double>(inkOf(piece)) < kSparse * static_cast<double>(room);
}

bool canBeText(const InkPiece& piece) {
  return piece.box.height() <= kTallest && !isRule(piece.box.size()) && !isFrame(piece) && !isSparse(piece);
}

const uint32_t* pixelRow(const QImage& image, int y) {
  return reinterpret_cast<const uint32_t*>(image.constScanLine(y));
}

/// Finds the ground around the ink; false where it parts two, as the edge of a button does.
bool findGround(InkPiece& piece, const QImage& image, const TextGrounds& grounds) {
  struct Contact {
    int count = 0;
    uint32_t color = 0;
  };
  std::map<TextGrounds::Ground, Contact> contacts;
  int total = 0;
  const auto touch = [&](int x, int y) {
    if (x < 0 || x >= grounds.width() || y < 0 || y >= grounds.height() || grounds.row(y)[x] < 0) return;
    Contact& contact = contacts[grounds.row(y)[x]];
    if (contact.count++ == 0) contact.color = pixelRow(image, y)[x];
    ++total;
  };
  for (const InkPiece::Run& run : piece.runs) {
    touch(run.begin - 1, run.y);
    touch(run.end, run.y);
    for (int x = run.begin; x < run.end; ++x) {
      touch(x, run.y - 1);
      touch(x, run.y + 1);
    }
  }
  const auto most = std::max_element(contacts.begin(), contacts.end(),
                                     [](const auto& a, const auto& b) { return a.second.count < b.second.count; });
  if (most == contacts.end() || most->second.count * 100 < kEnclosed * total) return false;
  piece.ground = most->first;
  piece.groundColor = most->second.color;
  for (const InkPiece::Run& run : piece.runs) {
    for (int x = run.begin; x < run.end; ++x) {
      piece.contrast = std::max(piece.contrast, colorDistance(pixelRow(image, run.y)[x], piece.groundColor));
    }
  }
  return piece.contrast >= kFaintest;
}

/// A bar, an empty field, an icon's square.
bool isSolid(const InkPiece& piece, const QImage& image) {
  const QSize size = piece.box.size();
  if (size.height() < kSmallestSolid || size.width() < 2 * kSmallestSolid) return false;
  int64_t ink = 0;
  for (const InkPiece::Run& run : piece.runs) {
    for (int x = run.begin; x < run.end; ++x) {
      ink += colorDistance(pixelRow(image, run.y)[x], piece.groundColor) * 2 > piece.contrast ? 1 : 0;
    }
  }
  return ink * 10 > static_cast<int64_t>(size.width()) * size.height() * 8;
}

int overlap(const QRect& a, const QRect& b) {
  return std::min(a.bottom(), b.bottom()) - std::max(a.top(), b.top()) + 1;
}
int gap(const QRect& a, const QRect& b) {
  return std::max(a.left(), b.left()) - std::min(a.right(), b.right()) - 1;
}
bool standSideBySide(const QRect& a, const QRect& b) {
  const int tall = std::max(a.height(), b.height()), low = std::min(a.height(), b.height());
  const int common = overlap(a, b);
  return common >= kLeastCommon * tall && common * 10 >= 6 * low && gap(a, b) <= kGap * tall;
}

using Test = bool (*)(const TextLine&, const TextLine&);

/// Joins the lines of one ground that pass the test, which holds only for lines close to each other.
std::vector<TextLine> joined(std::vector<TextLine> lines, Test test) {
  std::sort(lines.begin(), lines.end(),
            [](const TextLine& a, const TextLine& b) { return a.box.left() < b.box.left(); });
  Groups groups(lines.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    // Nothing that stands side by side with it is so much taller that it could be farther away.
    const int reach = lines[i].box.right() + static_cast<int>(kGap * lines[i].box.height() / kLeastCommon) + 1;
    for (size_t j = i + 1; j < lines.size() && lines[j].box.left() <= reach; ++j) {
      if (lines[i].pieces[0].ground == lines[j].pieces[0].ground && test(lines[i], lines[j])) groups.join(i, j);
    }
  }
  std::vector<TextLine> result;
  std::vector<size_t> places(lines.size(), SIZE_MAX);
  for (size_t i = 0; i < lines.size(); ++i) {
    size_t& place = places[groups.root(i)];
    if (place == SIZE_MAX) {
      place = result.size();
      result.emplace_back();
    }
    TextLine& line = result[place];
    line.box |= lines[i].box;
    std::move(lines[i].pieces.begin(), lines[i].pieces.end(), std::back_inserter(line.pieces));
  }
  return result;
}

bool isSmallBeside(const TextLine& small, const TextLine& line) {
  return small.pieces.size() <= kSmallPieces && small.box.height() <= kSmallHeight * line.box.height() &&
         small.box.width() <= kSmallWidth * line.box.height();
}

/// Dots, accents and quotes stand above or below what their neighbours reach.
void attachSmall(std::vector<TextLine>& lines) {
  const auto isHigher = [](const TextLine& a, const TextLine& b) { return a.box.top() < b.box.top(); };
  std::sort(lines.begin(), lines.end(), isHigher);
  // The boxes stay what they were meanwhile: a line must not grow along a dotted one.
  std::vector<size_t> owners(lines.size(), SIZE_MAX);
  for (size_t i = 0; i < lines.size(); ++i) {
    const QRect& small = lines[i].box;
    TextLine nearest;
    nearest.box.moveTop(small.top() - 2 * kTallest);
    double bestDistance = 0;
    const auto first = std::lower_bound(lines.begin(), lines.end(), nearest, isHigher);
    for (auto j = static_cast<size_t>(first - lines.begin());
         j < lines.size() && lines[j].box.top() <= small.bottom() + kTallest; ++j) {
      if (j == i || !isSmallBeside(lines[i], lines[j]) || lines[j].pieces[0].ground != lines[i].pieces[0].ground)
        continue;
      const QRect& line = lines[j].box;
      const int distance = std::max(line.top() - small.center().y(), small.center().y() - line.bottom());
      const double reach = distance > 0 ? kReachAbove : kReachBeside;
      if (gap(line, small) > reach * line.height()) continue;
      if (distance > kReachAbove * line.height() || (owners[i] != SIZE_MAX && distance >= bestDistance)) continue;
      owners[i] = j;
      bestDistance = distance;
    }
  }
  // Lowest first, as what is attached to something small goes along with it.
  std::vector<size_t> order(lines.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::sort(order.begin(), order.end(),
            [&](size_t a, size_t b) { return lines[a].box.height() < lines[b].box.height(); });
  for (const size_t i : order) {
    if (owners[i] == SIZE_MAX) continue;
    TextLine& line = lines[owners[i]];
    line.box |= lines[i].box;
    std::move(lines[i].pieces.begin(), lines[i].pieces.end(), std::back_inserter(line.pieces));
    lines[i].pieces.clear();
  }
  std::erase_if(lines, [](const TextLine& line) { return line.pieces.empty(); });
}

/// What stands side by side is read from left to right.
void sortByRows(std::vector<TextLine>& lines) {
  std::sort(lines.begin(), lines.end(),
            [](const TextLine& a, const TextLine& b) { return a.box.center().y() < b.box.center().y(); });
  for (auto row = lines.begin(); row != lines.end();) {
    const QRect first = row->box;
    const auto end = std::find_if(row, lines.end(), [&](const TextLine& line) {
      return overlap(first, line.box) * 2 < std::min(first.height(), line.box.height());
    });
    std::sort(row, end, [](const TextLine& a, const TextLine& b) { return a.box.left() < b.box.left(); });
    row = end;
  }
}

}  // namespace

int colorDistance(uint32_t a, uint32_t b) {
  const auto channel = [&](int shift) {
    return std::abs(static_cast<int>((a >> shift) & 255) - static_cast<int>((b >> shift) & 255));
  };
  return std::max({channel(0), channel(8), channel(16)});
}

std::vector<TextLine> textLines(const QImage& image, const TextGrounds& grounds) {
  std::vector<TextLine> lines;
  auto pieces = inkPieces(grounds);
  dropCrowded(pieces, image.size(), kMostPieces);
  for (InkPiece& piece : pieces) {
    if (!canBeText(piece) || !findGround(piece, image, grounds) || isSolid(piece, image)) continue;
    TextLine line;
    line.box = piece.box;
    line.pieces.push_back(std::move(piece));
    lines.push_back(std::move(line));
  }
  const Test neighbours = [](const TextLine& a, const TextLine& b) { return standSideBySide(a.box, b.box); };
  lines = joined(std::move(lines), neighbours);
  std::erase_if(lines, [](const TextLine& line) { return isRule(line.box.size()); });  // a dotted one
  attachSmall(lines);
  lines = joined(std::move(lines), neighbours);
  std::erase_if(lines, [](const TextLine& line) {
    return line.box.height() < kLowestLine || std::max(line.box.width(), line.box.height()) <= kSpeck;
  });
  sortByRows(lines);
  return lines;
}

}  // namespace quillmere
