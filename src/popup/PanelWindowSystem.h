#pragma once

#include <QtCore/QRect>
#include <QtGui/QWindow>

namespace quillmere {

/// What the popup needs of the window system beyond Qt. Windows of other applications are known by their numbers.
class PanelWindowSystem {
 public:
  virtual ~PanelWindowSystem() = default;
  /// Before the window is shown: above other windows and full screen, on all desktops, in no task bar.
  virtual void prepare(QWindow& window) = 0;
  /// After it is shown.
  virtual void finish(QWindow& window) = 0;
  /// Clicks outside this area, in the window's points, go to whatever lies below.
  virtual void setClickableArea(QWindow& window, const QRect& area) = 0;
  /// Whether translucent pixels show what lies below them.
  virtual bool isCompositing() const = 0;
  /// The window that has the keyboard; 0 when none is known.
  virtual quintptr activeWindow() const = 0;
  /// Asks the window manager to give a window the keyboard.
  virtual void activate(quintptr window) = 0;
};

}  // namespace quillmere
