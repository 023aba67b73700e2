#pragma once

#include <QtCore/QSize>
#include <QtGui/QImage>
#include <vector>

#include "pixels/ScalingSteps.h"
#include "pixels/ScalingWeights.h"

namespace quillmere {

/// Makes a picture smaller while its rows come, so that the large picture never has to be whole anywhere.
class Downscaler {
 public:
  /// The largest size of the same shape with neither side above `maxPixels`, nor below 1, nor above that of `size`.
  static QSize fitting(QSize size, int maxPixels);
  /// The whole picture at another size, neither side larger than it was. RGB32 without alpha, else premultiplied.
  static QImage scaled(const QImage& image, QSize size);

  /// Of rows of `format`: RGB32, ARGB32 or its premultiplied form. Neither side of `to` is larger than that of `from`.
  Downscaler(QSize from, QSize to, QImage::Format format, const ScalingSteps& steps = scalingSteps());

  /// How many rows are wanted at a time. The last time it may be fewer; zero when all were given.
  int rowsWanted() const;
  /// The next so many rows from the top.
  void add(const QRgb* const* rows);
  /// When all rows were given: RGB32 without alpha, else premultiplied. Null where there is no memory for it.
  QImage result() const { return result_; }

 private:
  const QRgb* const* premultiplied(const QRgb* const* rows, int count);
  void addCells(const QRgb* const* rows, int count);
  void makeRows();
  int16_t* levels(int cellRow);

  ScalingWeights across_;
  ScalingWeights down_;
  const ScalingSteps& steps_;
  QImage result_;
  std::vector<QRgb> premultiplied_;  ///< rows; empty where they come so
  std::vector<const QRgb*> premultipliedRows_;
  std::vector<uint16_t> sums_;   ///< of rows of pixels
  size_t stride_;                ///< levels in a row of cells, with room for what the weights reach beyond it
  std::vector<int16_t> levels_;  ///< the last rows of cells, as many as a new row is made of, by turns
  std::vector<const int16_t*> reached_;
  std::vector<int16_t> mixed_;
  int cellRows_ = 0;
  int newRows_ = 0;
};

}  // namespace quillmere
