#include "popup/CardShadow.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "popup/CardShape.h"

namespace quillmere {
namespace {

constexpr qreal kOpacity = 0.3;
constexpr int kOffset = 4;
/// How soft it is: so far the edge is blurred either way.
constexpr int kBlur = CardShadow::kReach - kOffset;
/// From the picture's edge to where the card's side is straight and the shadow the same all along.
constexpr int kCorner = CardShadow::kReach + static_cast<int>(CardShape::kCornerReach) + kBlur;
/// Points of the straight side in the picture, which stand for all of it.
constexpr int kMiddle = 2;
constexpr int kSide = 2 * kCorner + kMiddle;

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

QImage cardMask(int side, qreal scale, const QRectF& card) {
  QImage mask(side, side, QImage::Format_Grayscale8);
  mask.fill(0);
  QPainter painter(&mask);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(scale, scale);
  painter.fillPath(CardShape::path(card), Qt::white);
  return mask;
}

}  // namespace

void CardShadow::draw(qreal scale) {
  ++count_;
  const int side = qRound(kSide * scale);
  const QRectF card(kReach, kReach, kSide - 2 * kReach, kSide - 2 * kReach);
  Coverage coverage(cardMask(side, scale, card.translated(0, kOffset)));
  blur(coverage, static_cast<size_t>(kBlur * scale));

  QImage shadow(side, side, QImage::Format_ARGB32_Premultiplied);
  auto value = coverage.values.cbegin();
  for (int y = 0; y < side; ++y) {
    auto* line = reinterpret_cast<QRgb*>(shadow.scanLine(y));
    for (int x = 0; x < side; ++x) line[x] = qRgba(0, 0, 0, qRound(*value++ * kOpacity / kWhole * 255));
  }
  QPainter painter(&shadow);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(scale, scale);
  painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
  painter.fillPath(CardShape::path(card), Qt::black);
  painter.end();
  picture_ = QPixmap::fromImage(shadow);
  picture_.setDevicePixelRatio(scale);
}

void CardShadow::paint(QPainter& painter, const QRect& card) {
  const qreal scale = painter.device()->devicePixelRatioF();
  if (picture_.isNull() || picture_.devicePixelRatio() != scale) draw(scale);
  const QRectF whole = card.adjusted(-kReach, -kReach, kReach, kReach);
  // Four corners and what lies between them; a card lower than two corners has a part of each.
  const qreal cornerX = std::min<qreal>(kCorner, whole.width() / 2);
  const qreal cornerY = std::min<qreal>(kCorner, whole.height() / 2);
  const std::array<qreal, 4> toX{whole.left(), whole.left() + cornerX, whole.right() - cornerX, whole.right()};
  const std::array<qreal, 4> toY{whole.top(), whole.top() + cornerY, whole.bottom() - cornerY, whole.bottom()};
  const std::array<qreal, 6> fromX{0, cornerX, kCorner, kCorner + kMiddle, kSide - cornerX, kSide};
  const std::array<qreal, 6> fromY{0, cornerY, kCorner, kCorner + kMiddle, kSide - cornerY, kSide};
  for (size_t row = 0; row < 3; ++row) {
    for (size_t column = 0; column < 3; ++column) {
      if (row == 1 && column == 1) continue;  // the card itself
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
