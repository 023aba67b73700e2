#include "recognition/CrowdedInk.h"

#include <algorithm>
#include <bitset>

namespace quillmere {
namespace {

/// Grain is no larger.
constexpr int kSpeck = 4;
/// Places are looked through by windows of cells.
constexpr int kCell = 8;
constexpr int kWindow = 3;
/// Text has dots, but not so many, and its leaders stand in a row.
constexpr int kMostSpecks = 10;
constexpr int kMostSpeckRows = 7;
/// What is left is dropped by places of this size.
constexpr int kPlace = 128;

struct Cell {
  int specks = 0;
  std::bitset<kCell> rows;  ///< in which a speck begins
  bool isCrowded = false;
};

class Cells {
 public:
  explicit Cells(QSize imageSize)
      : columns_(imageSize.width() / kCell + 1), rows_(imageSize.height() / kCell + 1), cells_(columns_ * rows_) {}

  Cell& at(QPoint pixel) { return cell(pixel.x() / kCell, pixel.y() / kCell); }

  void findCrowds() {
    for (int y = 0; y + kWindow <= rows_; ++y) {
      for (int x = 0; x + kWindow <= columns_; ++x) {
        if (isCrowd(x, y)) forWindow(x, y, [](Cell& cell, int) { cell.isCrowded = true; });
      }
    }
  }

 private:
  Cell& cell(int x, int y) {
    return cells_[static_cast<size_t>(y) * static_cast<size_t>(columns_) + static_cast<size_t>(x)];
  }

  void forWindow(int left, int top, auto&& use) {
    for (int y = 0; y < kWindow; ++y) {
      for (int x = 0; x < kWindow; ++x) use(cell(left + x, top + y), y);
    }
  }

  bool isCrowd(int left, int top) {
    int specks = 0;
    std::bitset<kCell> rows[kWindow];
    forWindow(left, top, [&](const Cell& cell, int y) {
      specks += cell.specks;
      rows[y] |= cell.rows;
    });
    size_t begun = 0;
    for (const auto& row : rows) begun += row.count();
    return specks > kMostSpecks && begun > kMostSpeckRows;
  }

  int columns_, rows_;
  std::vector<Cell> cells_;
};

bool isSpeck(const QRect& box) {
  return std::max(box.width(), box.height()) <= kSpeck;
}

void dropGrain(std::vector<InkPiece>& pieces, QSize imageSize) {
  Cells cells(imageSize);
  for (const InkPiece& piece : pieces) {
    if (!isSpeck(piece.box)) continue;
    Cell& cell = cells.at(piece.box.topLeft());
    ++cell.specks;
    cell.rows.set(static_cast<size_t>(piece.box.top() % kCell));
  }
  cells.findCrowds();
  std::erase_if(pieces, [&](const InkPiece& piece) { return cells.at(piece.box.center()).isCrowded; });
}

void dropMostCrowded(std::vector<InkPiece>& pieces, QSize imageSize, size_t most) {
  const size_t columns = static_cast<size_t>(imageSize.width() / kPlace) + 1;
  std::vector<size_t> counts(columns * (static_cast<size_t>(imageSize.height() / kPlace) + 1));
  const auto placeOf = [&](const InkPiece& piece) {
    const QPoint middle = piece.box.center() / kPlace;
    return static_cast<size_t>(middle.y()) * columns + static_cast<size_t>(middle.x());
  };
  for (const InkPiece& piece : pieces) ++counts[placeOf(piece)];
  auto sorted = counts;
  std::sort(sorted.begin(), sorted.end());
  size_t kept = 0, limit = 0;
  for (auto place = sorted.begin(); place != sorted.end();) {
    const auto next = std::upper_bound(place, sorted.end(), *place);
    kept += *place * static_cast<size_t>(next - place);
    if (kept > most) break;
    limit = *place;
    place = next;
  }
  std::erase_if(pieces, [&](const InkPiece& piece) { return counts[placeOf(piece)] > limit; });
}

}  // namespace

void dropCrowded(std::vector<InkPiece>& pieces, QSize imageSize, size_t most) {
  dropGrain(pieces, imageSize);
  if (pieces.size() > most) dropMostCrowded(pieces, imageSize, most);
}

}  // namespace quillmere
