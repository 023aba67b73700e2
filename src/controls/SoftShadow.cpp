#include "controls/SoftShadow.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace quillmere {
namespace {

/// Points of the straight side in the picture, which stand for all of it.
constexpr int kMiddle = 2;

/// A pixel that is covered whole.
constexpr uint32_t kWhole = 0xFFFF;

/// How much of each pixel of a square picture is covered, in 16 bits, so that three blurs leave no steps.
struct Coverage {
  explicit Coverage(const QImage& mask) : side(static_cast<size_t>(mask.width())) {
    constexpr uint32_t kUnit = kWhole / 255;
    values.reserve(side * side);
    for (int y = 0; y < mask.height(); ++y) {
      const uchar* line = mask.constScanLine(y);
      for (size_t x = 0; x < side; ++x) values.push_back(line[x] * kUnit);
    }
  }
  size_t side;
  std::vector<uint32_t> values;
};

/// Each value becomes the mean of itself and `radius` neighbours on either side in its line.
void averageLines(Coverage& coverage, size_t radius) {
  const size_t side = coverage.side;
  std::vector<uint32_t> sums(side + 1);
  for (size_t first = 0; first < side * side; first += side) {
    for (size_t x = 0; x < side; ++x) sums[x + 1] = sums[x] + coverage.values[first + x];
    for (size_t x = 0; x < side; ++x) {
      const uint32_t sum = sums[std::min(x + radius + 1, side)] - sums[x - std::min(x, radius)];
      coverage.values[first + x] = sum / static_cast<uint32_t>(2 * radius + 1);
    }
  }
}

void transpose(Coverage& coverage) {
  for (size_t y = 0; y < coverage.side; ++y) {
    for (size_t x = 0; x < y; ++x) {
      std::swap(coverage.values[y * coverage.side + x], coverage.values[x * coverage.side + y]);
    }
  }
}

/// Three plain averages in each direction come close to the bell curve; together they reach as far as is said.
void blur(Coverage& coverage, size_t reach) {
  constexpr size_t kPasses = 3;
  for (size_t pass = 0; pass < kPasses; ++pass) averageLines(coverage, reach / kPasses);
  transpose(coverage);
  for (size_t pass = 0; pass < kPasses; ++pass) averageLines(coverage, reach / kPasses);
  transpose(coverage);
}

}  // namespace

SoftShadow::SoftShadow(Shape shape, std::vector<Layer> layers, int reach)
    : shape_(std::move(shape)),
      layers_(std::move(layers)),
      reach_(reach),
      corner_(2 * reach + shape_.cornerReach),
      side_(2 * corner_ + kMiddle) {}

QImage SoftShadow::drawn(const Layer& layer, const QRectF& shape, qreal scale) const {
  const int side = qRound(side_ * scale);
  QImage mask(side, side, QImage::Format_Grayscale8);
  mask.fill(0);
  QPainter painter(&mask);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(scale, scale);
  painter.fillPath(shape_.path(shape.translated(0, layer.offset)), Qt::white);
  painter.end();
  Coverage coverage(mask);
  blur(coverage, static_cast<size_t>(layer.blur * scale));

  QImage shadow(side, side, QImage::Format_ARGB32_Premultiplied);
  auto value = coverage.values.cbegin();
  for (int y = 0; y < side; ++y) {
    auto* line = reinterpret_cast<QRgb*>(shadow.scanLine(y));
    for (int x = 0; x < side; ++x) line[x] = qRgba(0, 0, 0, qRound(*value++ * layer.opacity / kWhole * 255));
  }
  return shadow;
}

void SoftShadow::draw(qreal scale) {
  ++count_;
  const QRectF shape(reach_, reach_, side_ - 2 * reach_, side_ - 2 * reach_);
  const int side = qRound(side_ * scale);
  QImage shadow(side, side, QImage::Format_ARGB32_Premultiplied);
  shadow.fill(Qt::transparent);
  QPainter painter(&shadow);
  for (const Layer& layer : layers_) painter.drawImage(0, 0, drawn(layer, shape, scale));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(scale, scale);
  painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
  painter.fillPath(shape_.path(shape), Qt::black);
  painter.end();
  picture_ = QPixmap::fromImage(shadow);
  picture_.setDevicePixelRatio(scale);
}

void SoftShadow::paint(QPainter& painter, const QRect& around) {
  const qreal scale = painter.device()->devicePixelRatioF();
  if (picture_.isNull() || picture_.devicePixelRatio() != scale) draw(scale);
  const QRectF whole = around.adjusted(-reach_, -reach_, reach_, reach_);
  // Four corners and what lies between them; a shape lower than two corners has a part of each.
  const qreal corner = corner_;
  const qreal side = side_;
  const qreal cornerX = std::min(corner, whole.width() / 2);
  const qreal cornerY = std::min(corner, whole.height() / 2);
  // Parts that end inside a pixel would both fade there, and a line be seen.
  const auto onPixel = [scale](qreal at) { return qRound(at * scale) / scale; };
  std::array<qreal, 4> toX{whole.left(), whole.left() + cornerX, whole.right() - cornerX, whole.right()};
  std::array<qreal, 4> toY{whole.top(), whole.top() + cornerY, whole.bottom() - cornerY, whole.bottom()};
  std::transform(toX.begin(), toX.end(), toX.begin(), onPixel);
  std::transform(toY.begin(), toY.end(), toY.begin(), onPixel);
  const std::array<qreal, 6> fromX{0, cornerX, corner, corner + kMiddle, side - cornerX, side};
  const std::array<qreal, 6> fromY{0, cornerY, corner, corner + kMiddle, side - cornerY, side};
  for (size_t row = 0; row < 3; ++row) {
    for (size_t column = 0; column < 3; ++column) {
      if (row == 1 && column == 1) continue;  // the shape itself
      const QRectF target(QPointF(toX[column], toY[row]), QPointF(toX[column + 1], toY[row + 1]));
      const QRectF source(QPointF(fromX[2 * column], fromY[2 * row]),
                          QPointF(fromX[2 * column + 1], fromY[2 * row + 1]));
      if (target.isEmpty()) continue;
      const qreal pixels = picture_.devicePixelRatio();
      painter.drawPixmap(target, picture_, QRectF(source.topLeft() * pixels, source.size() * pixels));
    }
  }
}

}  // namespace quillmere
