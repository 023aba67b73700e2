#include "controls/PopupSurface.h"

#include <QtGui/QBitmap>
#include <QtGui/QMouseEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QMenu>

#include "controls/Metrics.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

constexpr int kContactReach = 4;
constexpr SoftShadow::Layer kContact{.opacity = 0.10, .offset = 1, .blur = kContactReach};
constexpr SoftShadow::Layer kWide{.opacity = 0.20, .offset = 3, .blur = PopupSurface::kReach - 3};

QPainterPath rounded(const QRectF& place) {
  QPainterPath path;
  path.addRoundedRect(place, Radius::kSurface, Radius::kSurface);
  return path;
}

/// The pixels of a surface, none of which is translucent.
QRegion cut(const QRect& surface) {
  QBitmap mask(surface.size());
  mask.clear();
  QPainter painter(&mask);
  painter.setBrush(Qt::color1);
  painter.setPen(Qt::NoPen);
  painter.drawPath(rounded(QRectF(QPointF(), surface.size())));
  painter.end();
  return QRegion(mask).translated(surface.topLeft());
}

/// Where the surface, not its shadow, stands at the place that was asked for.
void place(QWidget& menu) {
  constexpr int kReach = PopupSurface::kReach;
  const auto* parent = qobject_cast<QMenu*>(menu.parentWidget());
  // One that opens from another stands by that one's metrics already.
  if (parent && parent->isVisible()) return;
  const QScreen* screen = menu.screen();
  const QRect room = screen ? screen->availableGeometry().adjusted(-kReach, -kReach, kReach, kReach) : QRect();
  const QRect window = menu.geometry();
  const bool isAtBottom = screen && window.bottom() >= screen->availableGeometry().bottom();
  const bool isAtRight = screen && window.right() >= screen->availableGeometry().right();
  QRect placed = window.translated(menu.isRightToLeft() || isAtRight ? kReach : -kReach, isAtBottom ? kReach : -kReach);
  if (room.isValid()) {
    placed.moveLeft(std::max(room.left(), std::min(placed.left(), room.right() + 1 - placed.width())));
    placed.moveTop(std::max(room.top(), std::min(placed.top(), room.bottom() + 1 - placed.height())));
  }
  menu.move(placed.topLeft());
}

}  // namespace

PopupSurface::PopupSurface() : shadow_({rounded, static_cast<int>(Radius::kSurface)}, {kWide, kContact}, kReach) {}

bool PopupSurface::isOne(const QWidget& widget) {
  const bool isCard = widget.windowType() == Qt::Dialog && widget.windowFlags().testFlag(Qt::FramelessWindowHint);
  return isCard || qobject_cast<const QMenu*>(&widget) || widget.inherits("QComboBoxPrivateContainer") ||
         widget.inherits("QTipLabel");
}

void PopupSurface::adopt(QWidget& widget) {
  if (!widget.testAttribute(Qt::WA_WState_Created)) {
    widget.setAttribute(Qt::WA_TranslucentBackground);
    // Some desktops draw a shadow around the window's own edges.
    widget.overrideWindowFlags(widget.windowFlags() | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
  }
  widget.installEventFilter(this);
}

void PopupSurface::fit(QWidget& widget) const {
  isCompositing() ? widget.clearMask() : widget.setMask(cut(surface(widget.rect())));
}

bool PopupSurface::eventFilter(QObject* watched, QEvent* event) {
  auto& widget = static_cast<QWidget&>(*watched);
  switch (event->type()) {
    case QEvent::Show:
      // The window system tells again when it has mapped the window.
      if (qobject_cast<QMenu*>(watched) && !event->spontaneous()) place(widget);
      fit(widget);
      return false;
    case QEvent::Resize:
      if (widget.isVisible()) fit(widget);
      return false;
    case QEvent::MouseButtonPress:
      // Beside the surface is beside the menu.
      if (widget.windowType() == Qt::Popup && widget.rect().contains(static_cast<QMouseEvent*>(event)->pos()) &&
          !surface(widget.rect()).contains(static_cast<QMouseEvent*>(event)->pos())) {
        widget.close();
        return true;
      }
      return false;
    default:
      return false;
  }
}

void PopupSurface::paint(QPainter& painter, const QWidget& widget) {
  const Theme theme(widget.palette());
  const QRect around = surface(widget.rect());
  const bool isWhole = isCompositing();
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  if (isWhole) {
    shadow_.paint(painter, around);
  } else {
    // The window ends at whole pixels, and what of these lies beyond the curve would be black.
    painter.strokePath(rounded(around), QPen(theme.fieldBorder, 2));
  }
  painter.fillPath(rounded(around), theme.card);
  painter.setPen(QPen(isWhole ? theme.hairline : theme.fieldBorder, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(around).adjusted(0.5, 0.5, -0.5, -0.5), Radius::kSurface - 0.5,
                          Radius::kSurface - 0.5);
  painter.restore();
}

}  // namespace quillmere
