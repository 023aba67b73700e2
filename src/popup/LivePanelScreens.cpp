#include "popup/LivePanelScreens.h"

#include <QtGui/QCursor>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

namespace quillmere {
namespace {

/// The height about which the coordinates are turned: that of the first screen.
qreal referenceHeight() {
  const QScreen* first = QGuiApplication::primaryScreen();
  return first ? first->geometry().height() : 0;
}

QRectF flipped(const QRectF& rect) {
  return {rect.x(), referenceHeight() - (rect.y() + rect.height()), rect.width(), rect.height()};
}

PanelScreen panelScreen(const QScreen& screen) {
  return {flipped(screen.geometry()), flipped(screen.availableGeometry())};
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

QPointF LivePanelScreens::mouseLocation() const {
  const QPoint position = QCursor::pos();
  return {static_cast<qreal>(position.x()), referenceHeight() - position.y()};
}

QRect LivePanelScreens::toQt(const QRectF& bottomLeft) {
  return flipped(bottomLeft).toRect();
}

}  // namespace quillmere
