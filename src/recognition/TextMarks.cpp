#include "recognition/TextMarks.h"

#include <algorithm>
#include <cstdlib>

namespace quillmere {
namespace {

/// Of a bar: how many times as broad as it is high at least, and its height in heights of the line at most.
constexpr double kBroad = 1.4;
constexpr double kHeight = 0.2;
/// The marks of a leader are as many at least. Fewer dots are full stops.
constexpr size_t kLeader = 4;
/// The engine reads a row of fewer marks well enough.
constexpr size_t kLongRow = 6;
/// How far dots of one leader may differ in place and size, in pixels, and be apart, in their widths.
constexpr int kUneven = 1;
constexpr int kDotGap = 8;

int middle(const QRect& box) {
  return (box.left() + box.right()) / 2;
}
bool shareColumns(const QRect& a, const QRect& b) {
  return std::min(a.right(), b.right()) >= std::max(a.left(), b.left());
}
bool isBar(const QRect& box, int lineHeight) {
  return box.width() >= kBroad * box.height() && box.height() <= std::max(2.0, kHeight * lineHeight);
}
bool isDot(const QRect& box, int lineHeight) {
  return std::abs(box.width() - box.height()) <= kUneven && box.height() <= std::max(2.0, kHeight * lineHeight);
}

/// Where most letters stand; the bottom of the line where there are none.
int baseline(const TextLine& line) {
  std::vector<int> bottoms;
  for (const InkPiece& piece : line.pieces) {
    if (piece.box.height() * 2 >= line.box.height()) bottoms.push_back(piece.box.bottom());
  }
  if (bottoms.empty()) return line.box.bottom();
  const auto half = bottoms.begin() + static_cast<std::ptrdiff_t>(bottoms.size() / 2);
  std::nth_element(bottoms.begin(), half, bottoms.end());
  return *half;
}

void addLeaders(std::vector<TextMark>& marks, const std::vector<QRect>& boxes, int lineHeight) {
  std::vector<QRect> row;
  const auto finish = [&] {
    if (row.size() >= kLeader) {
      for (const QRect& dot : row) marks.push_back({dot, u'.'});
    }
    row.clear();
  };
  for (const QRect& box : boxes) {
    if (!isDot(box, lineHeight)) {
      finish();
      continue;
    }
    if (!row.empty()) {
      const QRect& last = row.back();
      const int step = box.left() - last.left();
      const bool isEven = row.size() < 2 || std::abs(step - (last.left() - row[row.size() - 2].left())) <= kUneven;
      if (std::abs(box.bottom() - last.bottom()) > kUneven || step > kDotGap * last.width() + 1 || !isEven) finish();
    }
    row.push_back(box);
  }
  finish();
}

}  // namespace

std::vector<TextMark> textMarks(const TextLine& line) {
  std::vector<QRect> boxes;
  for (const InkPiece& piece : line.pieces) boxes.push_back(piece.box);
  std::sort(boxes.begin(), boxes.end(), [](const QRect& a, const QRect& b) { return a.left() < b.left(); });
  const auto isBroad = [](const QRect& box) { return box.width() >= kBroad * box.height(); };
  const bool isRow = line.pieces.size() >= kLeader && std::all_of(boxes.begin(), boxes.end(), isBroad);
  // A row of nothing but dashes does not tell how high its letters would be.
  const int height = isRow ? 2 * boxes[0].width() : line.box.height(), base = baseline(line);
  std::vector<TextMark> marks;
  for (size_t i = 0; i < boxes.size(); ++i) {
    const QRect& box = boxes[i];
    if (!isBar(box, height)) continue;
    std::vector<QRect> beside;
    for (size_t j = i; j-- > 0 && boxes[j].left() > box.left() - 4 * height;) {
      if (shareColumns(boxes[j], box)) beside.push_back(boxes[j]);
    }
    for (size_t j = i + 1; j < boxes.size() && boxes[j].left() <= box.right(); ++j) beside.push_back(boxes[j]);
    const bool isBelow = !isRow && box.top() > base;
    const bool isFullStop = !isRow && !isBelow && box.bottom() >= base - std::max(1, box.height() / 2);
    if (isFullStop) continue;
    if (beside.empty()) {
      if (isRow || isBelow || box.center().y() > line.box.top() + height / 4)
        marks.push_back({box, isBelow ? u'_' : u'-'});
    } else if (beside.size() == 1 && std::abs(beside[0].width() - box.width()) <= kUneven + box.width() / 8 &&
               beside[0].height() <= box.height() + kUneven && std::abs(middle(beside[0]) - middle(box)) <= kUneven) {
      const QRect both = box | beside[0];
      if (both.height() > both.width()) continue;
      if (marks.empty() || marks.back().box != both) marks.push_back({both, u'='});
    }
  }
  addLeaders(marks, boxes, height);
  std::sort(marks.begin(), marks.end(),
            [](const TextMark& a, const TextMark& b) { return a.box.left() < b.box.left(); });
  return marks;
}

std::vector<TextLine> withoutLongRows(const TextLine& line, const std::vector<TextMark>& marks) {
  std::vector<QRect> rows;
  for (size_t begin = 0, end = 0; begin < marks.size(); begin = end) {
    QRect row = marks[begin].box;
    const int reach = marks[begin].sign == u'.' ? kDotGap * row.width() : 2 * row.width();
    end = begin + 1;
    while (end < marks.size() && marks[end].sign == marks[begin].sign && marks[end].box.left() - row.right() <= reach) {
      row |= marks[end++].box;
    }
    if (end - begin >= kLongRow) rows.push_back(row);
  }
  std::vector<TextLine> parts(rows.size() + 1);
  for (const InkPiece& piece : line.pieces) {
    const auto isIn = [&](const QRect& row) { return row.contains(piece.box); };
    if (std::any_of(rows.begin(), rows.end(), isIn)) continue;
    const auto next =
        std::find_if(rows.begin(), rows.end(), [&](const QRect& row) { return middle(piece.box) < middle(row); });
    TextLine& part = parts[static_cast<size_t>(next - rows.begin())];
    part.box |= piece.box;
    part.pieces.push_back(piece);
  }
  std::erase_if(parts, [](const TextLine& part) { return part.pieces.empty(); });
  for (TextLine& part : parts) {
    part.box.setTop(line.box.top());
    part.box.setBottom(line.box.bottom());
  }
  return parts;
}

}  // namespace quillmere
