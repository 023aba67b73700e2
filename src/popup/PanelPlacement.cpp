#include "popup/PanelPlacement.h"

#include <algorithm>
#include <cmath>

namespace quillmere::PanelPlacement {
namespace {

qreal overlap(const QRectF& a, const QRectF& b) {
  const QRectF common = a.intersected(b);
  return common.isValid() ? common.width() * common.height() : 0;
}

/// The screen with the largest part of `rect`; of equal parts the first. Null when none has any.
const PanelScreen* largestOverlap(const QRectF& rect, const std::vector<PanelScreen>& screens) {
  const PanelScreen* best = nullptr;
  qreal bestArea = 0;
  for (const PanelScreen& screen : screens) {
    const qreal area = overlap(rect, screen.frame);
    if (area > bestArea) {
      best = &screen;
      bestArea = area;
    }
  }
  return best;
}

/// Whether the pixel under the pointer is the screen's: it lies right of the pointer's point and, with y upward, below
/// it, which matters where two screens meet.
bool holdsPointer(const QRectF& frame, const QPointF& pointer) {
  return pointer.x() >= frame.x() && pointer.x() < frame.x() + frame.width() && pointer.y() > frame.y() &&
         pointer.y() <= frame.y() + frame.height();
}

std::optional<QRectF> mainOrFirst(const std::vector<PanelScreen>& screens, const std::optional<PanelScreen>& main) {
  if (main) return main->visibleFrame;
  return screens.empty() ? std::nullopt : std::optional(screens.front().visibleFrame);
}

}  // namespace

Placement place(qreal naturalHeight, const QRectF& visible) {
  const qreal maxHeight = std::max(visible.height() - 2 * kMargin, 1.0);
  const qreal wanted = std::max(std::ceil(naturalHeight), 1.0);
  const qreal cardHeight = std::min(maxHeight, wanted);
  const qreal minX = visible.x();
  const qreal maxX = visible.x() + visible.width();
  const qreal minY = visible.y();
  const qreal maxY = visible.y() + visible.height();
  const qreal x = std::max(minX, maxX - kMargin - kCardWidth);
  const qreal y = std::max(minY, std::min(maxY - cardHeight, minY + kMargin));
  Placement placement;
  placement.card = QRectF(x, y, kCardWidth, cardHeight);
  placement.window = placement.card.adjusted(-kMargin, -kMargin, kMargin, kMargin);
  placement.scrolls = maxHeight < std::ceil(naturalHeight);
  return placement;
}

std::optional<QRectF> chooseScreen(const std::optional<QRectF>& captureRect, const PanelScreenProviding& provider) {
  const auto screens = provider.screens();
  const auto main = provider.mainScreen();
  if (screens.empty()) return mainOrFirst(screens, main);
  if (captureRect) {
    QRectF capture = *captureRect;
    capture.moveTop(screens.front().frame.height() - (captureRect->y() + captureRect->height()));
    if (const PanelScreen* screen = largestOverlap(capture, screens)) return screen->visibleFrame;
  }
  const QPointF mouse = provider.mouseLocation();
  const auto under = std::find_if(screens.begin(), screens.end(),
                                  [&](const PanelScreen& screen) { return holdsPointer(screen.frame, mouse); });
  return under != screens.end() ? under->visibleFrame : mainOrFirst(screens, main);
}

std::optional<QRectF> followScreen(const std::optional<QRectF>& oldFrame, const PanelScreenProviding& provider) {
  const auto screens = provider.screens();
  if (oldFrame) {
    if (const PanelScreen* screen = largestOverlap(*oldFrame, screens)) return screen->visibleFrame;
  }
  return mainOrFirst(screens, provider.mainScreen());
}

}  // namespace quillmere::PanelPlacement
