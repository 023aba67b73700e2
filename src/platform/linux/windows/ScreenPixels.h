#pragma once

#include <QtCore/QRectF>
#include <optional>
#include <vector>

#include "reading/WindowStack.h"

namespace quillmere {

/// An output of a Wayland compositor.
struct ScreenOutput {
  QRectF place;      ///< in points, over all outputs
  double scale = 1;  ///< its pixels per point
  bool operator==(const ScreenOutput&) const = default;
};

/// Where places in points stand in a picture of all outputs: in pixels of the finest of them, from the outermost
/// corner, as capture tools write such pictures.
class ScreenPixels {
 public:
  /// None without outputs that can be shown.
  static std::optional<ScreenPixels> of(const std::vector<ScreenOutput>& outputs);

  /// Each edge is the nearest pixel's.
  QRect pixels(const QRectF& points) const;
  /// Its root, monitors and scale are filled in.
  WindowStack emptyStack() const;

 private:
  std::vector<QRectF> outputs_;
  QRectF all_;
  double scale_ = 0;
};

}  // namespace quillmere
