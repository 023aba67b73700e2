#pragma once

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/Qt>
#include <array>
#include <optional>

#include "editor/CropSelection.h"

namespace quillmere {

/// What a drag takes hold of: a side, a corner, the inside, or nothing, which draws anew.
enum class CropHandle { topLeft, top, topRight, right, bottomRight, bottom, bottomLeft, left, inside };

namespace CropHandles {

inline constexpr std::array kAll{CropHandle::topLeft,     CropHandle::top,    CropHandle::topRight,   CropHandle::right,
                                 CropHandle::bottomRight, CropHandle::bottom, CropHandle::bottomLeft, CropHandle::left};

bool isCorner(CropHandle handle);
/// Where a handle stands on a rectangle: on its corner, or the middle of its side.
QPointF place(const QRectF& rect, CropHandle handle);
/// What a pointer takes hold of. All is in points of the view; `reach` is how far from a side or corner still counts.
/// Corners come before sides, and on a rectangle that is too small for all of them the inside keeps a third of each
/// length. The inside of a selection that is the whole picture (`isWhole`) is none: there is nowhere to move it.
std::optional<CropHandle> at(QPointF point, const QRectF& rect, qreal reach, bool isWhole);
/// For the pointer over it.
Qt::CursorShape cursor(std::optional<CropHandle> handle);
/// The smallest window that has this point of the picture in it, in pixels; null for none.
const WindowCandidate* windowAt(const std::vector<WindowCandidate>& windows, QPointF pixel);

}  // namespace CropHandles

/// A drag on the canvas from its press on, in pixels of the picture.
class CropDrag {
 public:
  /// `handle` none draws anew.
  CropDrag(std::optional<CropHandle> handle, QPointF start, const CropSelection& selection);

  std::optional<CropHandle> handle() const { return handle_; }
  /// Whether an edge is being dragged, or drawn.
  bool movesEdge() const { return handle_ != CropHandle::inside; }
  /// The selection for a pointer here. Edges that are dragged go to the nearest line within `reach` pixels, if that is
  /// more than 0: an edge of a detected window or of the picture. An edge dragged past its opposite changes places with
  /// it; a side has at least one pixel. What is moved stays in the picture whole.
  void apply(CropSelection& selection, QPointF current, qreal reach) const;
  /// Where it takes place: the corner that is dragged, or the point of an edge beside the pointer. The corner of a
  /// pixel.
  QPoint point(const CropSelection& selection, QPointF current) const;

 private:
  std::optional<CropHandle> handle_;
  QPointF start_;
  QRect from_;
};

}  // namespace quillmere
