#pragma once

#include <QtCore/QRect>
#include <QtGui/QImage>
#include <cstdint>
#include <vector>

namespace quillmere {

/// The grounds that a screen's text stands on: areas of one colour, or of one that changes gradually, that are taller
/// than a line, or as large as a label and mostly filled. What is neither a ground nor a rule is ink.
class TextGrounds {
 public:
  using Ground = int32_t;
  static constexpr Ground kInk = -1;
  static constexpr Ground kRule = -2;  ///< a thin line, or the frame of a field

  /// `image` has 32 bits a pixel and no transparency.
  explicit TextGrounds(const QImage& image);

  int width() const { return width_; }
  int height() const { return height_; }
  const Ground* row(int y) const { return grounds_.data() + static_cast<size_t>(y) * static_cast<size_t>(width_); }

 private:
  int width_;
  int height_;
  std::vector<Ground> grounds_;  ///< of each pixel
};

}  // namespace quillmere
