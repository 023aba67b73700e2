#include "popup/LivePanelScreens.h"

#include <QtGui/QCursor>
#include <QtGui/QGuiApplication>

namespace quillmere {
namespace {

/// The lower left corner of the first screen, in Qt's coordinates; it need not be at their left edge.
QPointF origin() {
  const QScreen* first = QGuiApplication::primaryScreen();
  if (!first) return {};
  const QRectF frame = first->geometry();
  return {frame.x(), frame.y() + frame.height()};
}

QPointF flipped(const QPointF& point) {
  return {point.x() - origin().x(), origin().y() - point.y()};
}

QRectF flipped(const QRectF& rect) {
  return {flipped(QPointF(rect.x(), rect.y() + rect.height())), rect.size()};
}

}  // namespace

std::vector<PanelScreen> LivePanelScreens::screens() const {
  std::vector<PanelScreen> result;
  for (const QScreen* screen : QGuiApplication::screens()) result.push_back(panelScreen(*screen));
  return result;
}

std::optional<PanelScreen> LivePanelScreens::mainScreen() const {
  const QScreen* main = QGuiApplication::primaryScreen();
  return main ? std::optional(panelScreen(*main)) : std::nullopt;
}

PanelScreen LivePanelScreens::panelScreen(const QScreen& screen) const {
  const QRect available = windowSystem_ ? windowSystem_->availableGeometry(screen) : screen.availableGeometry();
  return {flipped(QRectF(screen.geometry())), flipped(QRectF(available))};
}

QPointF LivePanelScreens::mouseLocation() const {
  return flipped(QPointF(QCursor::pos()));
}

QRect LivePanelScreens::toQt(const QRectF& bottomLeft) {
  const QPointF topLeft(bottomLeft.x() + origin().x(), origin().y() - (bottomLeft.y() + bottomLeft.height()));
  return QRectF(topLeft, bottomLeft.size()).toRect();
}

}  // namespace quillmere
