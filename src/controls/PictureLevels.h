#pragma once

#include <QtCore/QSize>
#include <QtGui/QImage>
#include <vector>

namespace quillmere {

/// One picture in several sizes, so that drawing it small costs what is drawn and not what the picture has: a painter
/// that takes one pixel of ten reads them all, and shows noise.
class PictureLevels {
 public:
  /// The picture at half its size, at a quarter, and so on, for `add`. Any thread.
  static std::vector<QImage> halves(const QImage& picture);

  /// The picture halved so many times, and nothing between. Any thread.
  static QImage halved(const QImage& picture, int times);
  /// How often a side of `from` pixels can be halved and still have `to`.
  static int halvings(int from, int to);

  void add(const QImage& image);
  void clear() { images_.clear(); }
  bool isEmpty() const { return images_.empty(); }

  /// What to draw the picture from at this size: the smallest image that has as many pixels, unless it has more than
  /// twice as many on a side and a smaller image will do meanwhile. Null without any.
  QImage nearest(QSize pixels) const;
  /// In memory, without what it shares with `other`.
  qsizetype bytesBeside(const QImage& other) const;

 private:
  std::vector<QImage> images_;  ///< smallest first
};

}  // namespace quillmere
