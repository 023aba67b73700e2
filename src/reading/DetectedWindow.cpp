#include "reading/DetectedWindow.h"

#include "pixels/PixelRects.h"

namespace quillmere::ImageOperations {
namespace {

/// By the first of these that tells them apart.
bool isBetter(const DetectedWindow& a, const DetectedWindow& b) {
  if (a.isCovered != b.isCovered) return !a.isCovered;
  if (a.hasTitleBarButtons != b.hasTitleBarButtons) return a.hasTitleBarButtons;
  if (a.isFullyDrawn != b.isFullyDrawn) return a.isFullyDrawn;
  return rectArea(a.frame) > rectArea(b.frame);
}

}  // namespace

std::optional<DetectedWindow> primaryWindow(const std::vector<DetectedWindow>& windows) {
  std::optional<DetectedWindow> best;
  for (const DetectedWindow& window : windows) {
    if (window.isInFront) return window;
    if (!window.isEnclosed && (!best || isBetter(window, *best))) best = window;
  }
  return best;
}

}  // namespace quillmere::ImageOperations
