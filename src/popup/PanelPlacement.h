#pragma once

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <optional>
#include <vector>

namespace quillmere {

/// Screen rectangles here have their origin bottom-left of the first screen, y upward, in points: a `QRectF` whose
/// `y()` is its lower edge.
struct PanelScreen {
  QRectF frame;         ///< the whole screen
  QRectF visibleFrame;  ///< without the desktop's docks
  bool operator==(const PanelScreen&) const = default;
};

class PanelScreenProviding {
 public:
  virtual ~PanelScreenProviding() = default;
  virtual std::vector<PanelScreen> screens() const = 0;
  virtual std::optional<PanelScreen> mainScreen() const = 0;
  virtual QPointF mouseLocation() const = 0;
};

namespace PanelPlacement {

inline constexpr qreal kCardWidth = 440;
/// Around the card, for its shadow; clicks go through.
inline constexpr qreal kMargin = 24;

struct Placement {
  QRectF card;
  QRectF window;         ///< the card with its margin
  bool scrolls = false;  ///< the card's contents do not fit
};
/// The card sits 24 points in from the right and the bottom of the visible frame and grows upward; on a screen too
/// small for it, it sticks to the left or bottom edge rather than leave the screen.
Placement place(qreal naturalHeight, const QRectF& visible);

/// The visible frame of the screen that a popup opens on: where most of the capture was taken (a rectangle with its
/// origin top-left), else the screen under the pointer, else the main one.
std::optional<QRectF> chooseScreen(const std::optional<QRectF>& captureRect, const PanelScreenProviding& screens);

/// The visible frame after the screens changed: of the screen that holds most of the old one, else the main one.
std::optional<QRectF> followScreen(const std::optional<QRectF>& oldFrame, const PanelScreenProviding& screens);

}  // namespace PanelPlacement
}  // namespace quillmere
