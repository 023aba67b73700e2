#pragma once

#include <QtCore/QRect>
#include <QtGui/QScreen>
#include <QtGui/QWindow>

#include "foundation/Signal.h"

namespace quillmere {

/// What the popup needs of the window system beyond Qt. Windows of other applications are known by their numbers.
class PanelWindowSystem {
 public:
  virtual ~PanelWindowSystem() = default;
  /// Before the window is shown: above other windows and full screen, on all desktops, in no task bar.
  virtual void prepare(QWindow& window) = 0;
  /// After it is shown.
  virtual void finish(QWindow& window) = 0;
  /// Whether the window manager may give the window the keyboard, by a click for one. It is given none by this.
  virtual void setAcceptsKeyboard(QWindow& window, bool accepts) {
    window.setFlag(Qt::WindowDoesNotAcceptFocus, !accepts);
  }
  /// Where the card stands, in the window's points, also before the window is shown. Clicks outside go to whatever lies
  /// below, and where nothing shines through the window ends there.
  virtual void setClickableArea(QWindow& window, const QRect& area) = 0;
  /// Whether translucent pixels show what lies below them.
  virtual bool isCompositing() const = 0;
  Signal<> compositingChanged;
  /// The window that has the keyboard; 0 when none is known.
  virtual quintptr activeWindow() const = 0;
  /// Asks the window manager to give a window the keyboard.
  virtual void activate(quintptr window) = 0;
  /// Before a popup comes up: docks that the desktop tells nothing of are looked for.
  virtual void lookForRoom() {}
  /// What the desktop's docks leave of a screen, in points.
  virtual QRect availableGeometry(const QScreen& screen) const { return screen.availableGeometry(); }
  Signal<> availableGeometryChanged;
};

}  // namespace quillmere
