#pragma once

#include <QtCore/QObject>
#include <QtCore/QRect>
#include <functional>

#include "controls/SoftShadow.h"

class QWidget;

namespace quillmere {

struct Theme;

/// Menus, lists of choices, tool tips and dialogs without a frame: a rounded surface with room around it for its
/// shadow. Where nothing translucent is shown the window ends at the surface, whose edge is then clear to see.
class PopupSurface final : public QObject {
 public:
  /// The room for the shadow on each side, in points.
  static constexpr int kReach = 12;
  /// From the edge of the window to what stands in it.
  static constexpr int kMargin = kReach + 5;

  PopupSurface();

  /// Whether translucent pixels show what lies below them; asked for at each showing.
  std::function<bool()> isCompositing = [] { return true; };

  /// Whether the widget is one of these, which is so before it has a window.
  static bool isOne(const QWidget& widget);
  void adopt(QWidget& widget);
  void paint(QPainter& painter, const QWidget& widget);
  static QRect surface(const QRect& window) { return window.adjusted(kReach, kReach, -kReach, -kReach); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void fit(QWidget& widget) const;

  SoftShadow shadow_;
};

}  // namespace quillmere
