#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QRect>
#include <QtCore/QSize>
#include <cstdint>
#include <optional>
#include <vector>

#include "reading/DetectedWindow.h"
#include "records/ScreenshotItem.h"

namespace quillmere {

/// Which windows a picture shows, as the window system told of them and the picture's own edges confirmed. It holds for
/// the pixels that it was found in alone.
struct KnownWindows {
  struct Window {
    QRect frame;                                 ///< the part that is in the picture; image pixels, origin top-left
    bool isCovered = false;                      ///< another window lies above a part of it
    std::optional<WindowShadowMargin> shadow{};  ///< where that is known as well
    bool operator==(const Window&) const = default;
  };
  CaptureKind kind = CaptureKind::display;
  QSize size;                   ///< the picture's, in pixels
  uint32_t checksum = 0;        ///< of its pixels
  std::vector<Window> windows;  ///< lowest first
  std::optional<size_t> front;  ///< which of them a person means by "the window"
  bool operator==(const KnownWindows&) const = default;

  /// As a record keeps it: "kind size checksum", then each window as a geometry of the X Window System,
  /// "800x600+100+80", with marks before it: "^" for the one in front, "_" for one that is covered; and behind it
  /// "/left,top,right,bottom" of a shadow.
  QByteArray coded() const;
  static std::optional<KnownWindows> fromCoded(const QByteArray& text);
};

}  // namespace quillmere
