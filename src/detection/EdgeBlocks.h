#pragma once

#include <QtGui/QImage>
#include <cstdint>
#include <vector>

namespace quillmere::CapturedWindows {

/// Where straight lines run through a picture, in blocks of 16 pixels along the line. A block belongs to a line where
/// the colour changes across it, and changes less on at least one of its sides: the slope of a shadow is no line.
class EdgeBlocks {
 public:
  static constexpr int kBlock = 16;

  /// What colour the picture has, without what shows through. A line may be `reach` pixels off: as wide as a window's
  /// thin border, which may lie just outside.
  explicit EdgeBlocks(const QImage& image, int reach = 1);

  int width() const { return width_; }
  int height() const { return height_; }
  /// Of whole blocks only.
  int rowCount() const { return height_ / kBlock; }
  int columnCount() const { return width_ / kBlock; }

  /// Whether a line runs between the columns `x` - 1 and `x`, or `reach` beside that, through the block of rows that
  /// begins at 16 times `row`.
  bool hasVertical(int x, int row) const { return (vertical_[at(x, row, width_)] & kNear) != 0; }
  bool hasHorizontal(int y, int column) const { return (horizontal_[at(y, column, height_)] & kNear) != 0; }
  /// Whether a line that is there begins at `x` or `y` to the pixel, seen from smaller numbers (`from` -1) or from
  /// larger ones (1).
  bool beginsVertical(int x, int row, int from) const { return (vertical_[at(x, row, width_)] & begin(from)) != 0; }
  bool beginsHorizontal(int y, int column, int from) const {
    return (horizontal_[at(y, column, height_)] & begin(from)) != 0;
  }
  /// The blocks in which a line runs exactly there, by its position.
  std::vector<int> verticalLines() const { return lines(vertical_, width_, rowCount()); }
  std::vector<int> horizontalLines() const { return lines(horizontal_, height_, columnCount()); }

  /// How far two colours beside a line are apart, at one pixel of its length; 0 to 255, 0 outside the picture. Between
  /// the columns `x` - 1 and `x`, or the rows `y` - 1 and `y`, or a pixel beside that.
  int verticalStep(int x, int y) const;
  int horizontalStep(int x, int y) const;

 private:
  static constexpr uint8_t kNear = 1;
  static constexpr uint8_t kExact = 2;
  static constexpr uint8_t kFromBefore = 4;
  static constexpr uint8_t kFromBehind = 8;
  static constexpr uint8_t begin(int from) { return from < 0 ? kFromBefore : kFromBehind; }
  using Marks = std::vector<uint8_t>;

  static size_t at(int position, int block, int length) {
    return static_cast<size_t>(block) * static_cast<size_t>(length + 1) + static_cast<size_t>(position);
  }
  void mark(const std::vector<uint16_t>& steps, uint8_t* marks) const;
  static std::vector<int> lines(const Marks& marks, int length, int blocks);

  QImage pixels_;  ///< opaque, 32 bits each
  int reach_;
  int width_;
  int height_;
  Marks vertical_;  ///< by block and position
  Marks horizontal_;
};

}  // namespace quillmere::CapturedWindows
