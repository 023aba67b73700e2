#pragma once

#include <QtCore/QRectF>
#include <optional>
#include <vector>

namespace quillmere {

/// How many pixels a window's drop shadow reaches beyond its frame, to add on each side.
struct WindowShadowMargin {
  enum class Source {
    measured,   ///< at least one side gave a shadow that can be trusted
    estimated,  ///< the surroundings cannot be read: a typical shadow
    none,       ///< there is no shadow, or nothing can be said: all margins are 0
  };
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
  Source source = Source::none;
  bool operator==(const WindowShadowMargin&) const = default;
};

namespace ImageOperations {

/// A window in a picture, with its shadow. The frame is whole-numbered and inside the picture.
struct DetectedWindow {
  QRectF frame;
  WindowShadowMargin shadow;
  bool hasTitleBarButtons = false;
  bool isFullyDrawn = false;
  bool isCovered = false;
  bool isEnclosed = false;
  bool isInFront = false;  ///< as the window system told: the one that a person means
  bool operator==(const DetectedWindow&) const = default;
};

/// The window to take without asking: the one in front, where that is known. None of none, or where all are enclosed in
/// others.
std::optional<DetectedWindow> primaryWindow(const std::vector<DetectedWindow>& windows);

}  // namespace ImageOperations
}  // namespace quillmere
