#include "controls/PictureDrawing.h"

#include <QtGui/QPainter>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace quillmere {
namespace {

/// A part of the image that shares its pixels; only while the image is there.
QImage sharedPart(const QImage& image, const QRect& part) {
  const uchar* first = image.constScanLine(part.y()) + qsizetype{part.x()} * (image.depth() / 8);
  return QImage(first, part.width(), part.height(), image.bytesPerLine(), image.format());
}

/// The index of the image's pixel at each pixel of the screen along one side.
std::vector<int> indices(int first, int count, int placeStart, int placeLength, int imageLength) {
  std::vector<int> result(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    const int64_t at = int64_t{first} + i - placeStart;
    const int64_t index = (2 * at + 1) * imageLength / (2 * int64_t{placeLength});
    result[static_cast<size_t>(i)] = static_cast<int>(std::clamp<int64_t>(index, 0, imageLength - 1));
  }
  return result;
}

}  // namespace

void drawSmoothly(QPainter& painter, const QImage& image, const QRect& place, const QRect& visible) {
  const QRect seen = place & visible;
  if (image.isNull() || seen.isEmpty()) return;
  // A painter reckons with places up to 32767, and with more of an image than it shows.
  constexpr int kNeighbours = 2;
  const qreal across = static_cast<qreal>(place.width()) / image.width();
  const qreal down = static_cast<qreal>(place.height()) / image.height();
  const QPoint first(qFloor((seen.left() - place.left()) / across) - kNeighbours,
                     qFloor((seen.top() - place.top()) / down) - kNeighbours);
  const QPoint last(qCeil((seen.right() + 1 - place.left()) / across) + kNeighbours,
                    qCeil((seen.bottom() + 1 - place.top()) / down) + kNeighbours);
  const QRect part = QRect(first, last) & image.rect();
  const QImage pixels = sharedPart(image, part);
  if (place.size() == image.size()) {
    painter.drawImage(place.topLeft() + part.topLeft(), pixels);
    return;
  }
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(
      QRectF(place.x() + part.x() * across, place.y() + part.y() * down, part.width() * across, part.height() * down),
      pixels);
}

QImage asSquares(const QImage& image, const QRect& place, const QRect& visible) {
  const QRect seen = place & visible;
  if (image.isNull() || seen.isEmpty()) return {};
  QImage result(seen.size(), image.format());
  if (result.isNull()) return {};
  const auto columns = indices(seen.x(), seen.width(), place.x(), place.width(), image.width());
  const auto rows = indices(seen.y(), seen.height(), place.y(), place.height(), image.height());
  for (int y = 0; y < seen.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(result.scanLine(y));
    if (y > 0 && rows[static_cast<size_t>(y)] == rows[static_cast<size_t>(y) - 1]) {
      std::memcpy(line, result.constScanLine(y - 1), static_cast<size_t>(seen.width()) * sizeof(QRgb));
      continue;
    }
    const auto* source = reinterpret_cast<const QRgb*>(image.constScanLine(rows[static_cast<size_t>(y)]));
    for (const int column : columns) *line++ = source[column];
  }
  return result;
}

void drawCheckers(QPainter& painter, const QRect& place, const QRect& visible, int side, QColor one, QColor other) {
  QImage tile(2 * side, 2 * side, QImage::Format_RGB32);
  tile.fill(one);
  QPainter squares(&tile);
  squares.fillRect(side, 0, side, side, other);
  squares.fillRect(0, side, side, side, other);
  squares.end();
  const QRect seen = place & visible;
  if (seen.isEmpty()) return;
  painter.drawTiledPixmap(seen, QPixmap::fromImage(tile), seen.topLeft() - place.topLeft());
}

}  // namespace quillmere
