#include "platform/linux/panel/X11CardShape.h"

#include <cmath>

#include "popup/CardShape.h"

namespace quillmere::X11CardShape {
namespace {

constexpr qreal kCentre = 0.5;

xcb_rectangle_t rectangle(int x, int y, int width, int height) {
  return {static_cast<int16_t>(x), static_cast<int16_t>(y), static_cast<uint16_t>(width),
          static_cast<uint16_t>(height)};
}

}  // namespace

QRect pixels(const QRect& card, qreal scale) {
  const auto pixel = [scale](int point) { return qRound(point * scale); };
  return {QPoint(pixel(card.x()), pixel(card.y())),
          QPoint(pixel(card.x() + card.width()) - 1, pixel(card.y() + card.height()) - 1)};
}

std::vector<xcb_rectangle_t> lines(const QRect& card, qreal scale) {
  const QRect area = pixels(card, scale);
  const int reach = std::min(static_cast<int>(std::ceil(CardShape::kCornerReach * scale)), (area.height() + 1) / 2);
  std::vector<xcb_rectangle_t> result;
  for (int line = 0; line < reach; ++line) {
    const int inset = static_cast<int>(std::ceil(scale * CardShape::cornerInset((line + kCentre) / scale) - kCentre));
    const int width = area.width() - 2 * inset;
    if (width <= 0) continue;
    result.push_back(rectangle(area.x() + inset, area.y() + line, width, 1));
    const int mirrored = area.height() - 1 - line;
    if (mirrored > line) result.push_back(rectangle(area.x() + inset, area.y() + mirrored, width, 1));
  }
  const int between = area.height() - 2 * reach;
  if (between > 0) result.push_back(rectangle(area.x(), area.y() + reach, area.width(), between));
  return result;
}

}  // namespace quillmere::X11CardShape
