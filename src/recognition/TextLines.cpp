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
/// Of underscores, where no letter of their line goes below it.
constexpr double kReachBelow = 0.55;
/// Dashes, bars of equals signs and underscores: lower than this, in heights of their line.
constexpr double kBarHeight = 0.26;
/// How far two of them are apart at most, in their widths.
constexpr double kBarGap = 1.8;
constexpr int kLongestSign = 32;
/// A leader's dots.
constexpr int kLargestDot = 5;
constexpr int kDotGap = 6;
constexpr size_t kLeader = 6;
/// As many of them in a row, without any letter, may be text.
constexpr size_t kRow = 6;
/// Each time, marks further away from the letters are attached to those that already are.
constexpr int kAttachments = 4;
/// Of an icon: how far it is from the letters and how high it is, in their heights.
constexpr double kIconGap = 0.3;
constexpr double kIconHeight = 1.15;
constexpr size_t kFewestLetters = 3;
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

/// How far the letters reach below; what is attached to them does not count.
int bottomOfLetters(const TextLine& line) {
  int bottom = line.box.top();
  for (const InkPiece& piece : line.pieces) {
    if (piece.box.height() > kBarHeight * line.box.height()) bottom = std::max(bottom, piece.box.bottom());
  }
  return bottom;
}

int bottomOfMost(const TextLine& line) {
  std::vector<int> bottoms;
  for (const InkPiece& piece : line.pieces) bottoms.push_back(piece.box.bottom());
  const auto half = bottoms.begin() + static_cast<std::ptrdiff_t>(bottoms.size() / 2);
  std::nth_element(bottoms.begin(), half, bottoms.end());
  return *half;
}

/// Only broad marks: a row of dots may as well be a frame.
bool isRowOfBars(const TextLine& marks) {
  return std::all_of(marks.pieces.begin(), marks.pieces.end(), [&](const InkPiece& piece) {
    return piece.box.width() * 5 >= 7 * piece.box.height() && piece.box.height() * 2 > marks.box.height();
  });
}

bool isDot(const InkPiece& piece) {
  return std::max(piece.box.width(), piece.box.height()) <= kLargestDot &&
         std::abs(piece.box.width() - piece.box.height()) <= 1;
}
bool isRowOfDots(const TextLine& marks) {
  return std::all_of(marks.pieces.begin(), marks.pieces.end(), isDot);
}

/// Dashes, or the upper or lower bars of equals signs.
bool areMarksInARow(const TextLine& a, const TextLine& b) {
  if (std::abs(a.box.bottom() - b.box.bottom()) > 1) return false;
  const int first = a.pieces[0].box.width(), second = b.pieces[0].box.width();
  if (std::max(first, second) > kLongestSign) return false;
  return std::abs(first - second) <= 2 && gap(a.box, b.box) <= kBarGap * std::min(first, second) && isRowOfBars(a) &&
         isRowOfBars(b);
}

/// The two bars of each sign in a row of equals signs.
bool areStacked(const TextLine& a, const TextLine& b) {
  const auto isNear = [](int one, int other) { return std::abs(one - other) <= 1; };
  return a.pieces.size() == b.pieces.size() && isNear(a.box.left(), b.box.left()) &&
         isNear(a.box.right(), b.box.right()) && isRowOfBars(a) && isRowOfBars(b) &&
         std::abs(a.box.top() - b.box.top()) <= a.pieces[0].box.width();
}

bool belongTogether(const TextLine& a, const TextLine& b) {
  return standSideBySide(a.box, b.box) || areMarksInARow(a, b);
}

using Test = bool (*)(const TextLine&, const TextLine&);

/// Joins the lines of one ground that pass the test, which holds only for lines close to each other.
std::vector<TextLine> joined(std::vector<TextLine> lines, Test test) {
  std::sort(lines.begin(), lines.end(),
            [](const TextLine& a, const TextLine& b) { return a.box.left() < b.box.left(); });
  Groups groups(lines.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    // Nothing that stands side by side with it is so much taller that it could be farther away.
    const double farthest = std::max(kGap * lines[i].box.height() / kLeastCommon,
                                     kBarGap * std::min(lines[i].pieces[0].box.width(), kLongestDash));
    const int reach = lines[i].box.right() + static_cast<int>(farthest) + 1;
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
  if (small.box.height() <= kBarHeight * line.box.height() && isRowOfBars(small)) {
    // An underline is no text.
    const auto isAboveOrBelow = [&](const InkPiece& piece) {
      return piece.box.height() > small.box.height() && gap(piece.box, small.box) < -1;
    };
    if (std::none_of(line.pieces.begin(), line.pieces.end(), isAboveOrBelow)) return true;
  }
  if (small.pieces.size() >= kLeader && isRowOfDots(small)) {
    // On the line that the letters stand on; a frame of dots stands apart.
    return small.box.height() * 2 <= line.box.height() &&
           std::abs(small.box.bottom() - bottomOfMost(line)) <= 1 + line.box.height() / 12;
  }
  return small.pieces.size() <= kSmallPieces && small.box.height() <= kSmallHeight * line.box.height() &&
         small.box.width() <= kSmallWidth * line.box.height();
}

/// Dots, accents and quotes stand above or below what their neighbours reach.
bool attachSmall(std::vector<TextLine>& lines) {
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
      const bool isUnderscore = small.center().y() > line.bottom() && isRowOfBars(lines[i]);
      if (isUnderscore && small.center().y() - bottomOfLetters(lines[j]) > kReachBelow * line.height()) continue;
      if (distance > (isUnderscore ? kReachBelow : kReachAbove) * line.height() ||
          (owners[i] != SIZE_MAX && distance >= bestDistance))
        continue;
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
  return std::erase_if(lines, [](const TextLine& line) { return line.pieces.empty(); }) > 0;
}

bool isRowOfSigns(const TextLine& line) {
  return line.pieces.size() >= kRow && std::all_of(line.pieces.begin(), line.pieces.end(), [](const InkPiece& piece) {
           return piece.box.width() * 5 >= 7 * piece.box.height();
         });
}

std::vector<QRect> boxesOfWords(const std::vector<TextLine>& lines) {
  std::vector<QRect> boxes;
  for (const TextLine& line : lines) {
    if (line.box.height() >= kLowestLine && !isRowOfSigns(line)) boxes.push_back(line.box);
  }
  return boxes;
}

/// Whether it begins where words above or below begin that are of its size. Else it is a dashed frame.
bool isUnderWords(const TextLine& row, const std::vector<QRect>& words) {
  const double step = static_cast<double>(row.box.width()) / static_cast<double>(row.pieces.size()) *
                      (row.box.height() > row.pieces[0].box.height() + 2 ? 2 : 1);
  return std::any_of(words.begin(), words.end(), [&](const QRect& word) {
    return std::abs(word.left() - row.box.left()) < 1.5 * step && word.height() > 0.8 * step &&
           word.height() < 3 * step && -overlap(word, row.box) < 8 * step;
  });
}

/// Joins dots of one size on one line at even distances.
void joinLeaders(std::vector<TextLine>& lines) {
  std::vector<TextLine*> dots;
  for (TextLine& line : lines) {
    if (line.pieces.size() == 1 && isRowOfDots(line)) dots.push_back(&line);
  }
  std::sort(dots.begin(), dots.end(), [](const TextLine* a, const TextLine* b) {
    return a->box.bottom() != b->box.bottom() ? a->box.bottom() < b->box.bottom() : a->box.left() < b->box.left();
  });
  for (size_t begin = 0, end = 0; begin < dots.size(); begin = end) {
    const auto step = [&](size_t i) { return dots[i + 1]->box.left() - dots[i]->box.left(); };
    const auto goesOn = [&](size_t i) {
      return dots[i + 1]->box.bottom() == dots[i]->box.bottom() &&
             step(i) <= kDotGap * dots[i]->box.width() + kDotGap && std::abs(step(i) - step(begin)) <= 1;
    };
    end = begin + 1;
    while (end < dots.size() && goesOn(end - 1)) ++end;
    if (end - begin < kLeader) continue;
    TextLine& whole = *dots[begin];
    for (size_t i = begin + 1; i < end; ++i) {
      whole.box |= dots[i]->box;
      whole.pieces.push_back(std::move(dots[i]->pieces[0]));
      dots[i]->pieces.clear();
    }
  }
  std::erase_if(lines, [](const TextLine& line) { return line.pieces.empty(); });
}

/// An icon before a label is as broad as high, higher than the letters, and stands apart.
void dropIcon(TextLine& line) {
  auto& pieces = line.pieces;
  std::sort(pieces.begin(), pieces.end(),
            [](const InkPiece& a, const InkPiece& b) { return a.box.left() < b.box.left(); });
  QRect icon = pieces.front().box;
  size_t end = 1;
  while (end < pieces.size() && pieces[end].box.left() <= icon.right() + 1) icon |= pieces[end++].box;
  std::vector<int> heights;
  for (size_t i = end; i < pieces.size(); ++i) {
    if (pieces[i].box.height() * 5 >= icon.height() * 2) heights.push_back(pieces[i].box.height());
  }
  if (heights.size() < kFewestLetters) return;
  std::sort(heights.begin(), heights.end());
  const int letters = heights[heights.size() * 9 / 10];
  const bool isApart = pieces[end].box.left() - icon.right() - 1 >= std::max(3.0, kIconGap * letters);
  if (!isApart || icon.height() < kIconHeight * letters || icon.width() * 4 < icon.height() * 3 ||
      icon.width() * 4 > icon.height() * 5)
    return;
  pieces.erase(pieces.begin(), pieces.begin() + static_cast<std::ptrdiff_t>(end));
  line.box = QRect();
  for (const InkPiece& piece : pieces) line.box |= piece.box;
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
  joinLeaders(lines);
  lines = joined(std::move(lines), belongTogether);
  for (int i = 0; i < kAttachments && attachSmall(lines); ++i) lines = joined(std::move(lines), belongTogether);
  std::erase_if(lines,
                [](const TextLine& line) { return isRule(line.box.size()) && !isRowOfBars(line); });  // a dotted one
  lines = joined(std::move(lines), areStacked);
  const std::vector<QRect> words = boxesOfWords(lines);
  std::erase_if(lines, [&](const TextLine& line) {
    if (isRowOfSigns(line)) return !isUnderWords(line, words);
    return line.box.height() < kLowestLine || std::max(line.box.width(), line.box.height()) <= kSpeck;
  });
  for (TextLine& line : lines) dropIcon(line);
  sortByRows(lines);
  return lines;
}

}  // namespace quillmere
