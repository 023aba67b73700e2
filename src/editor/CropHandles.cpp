#include "editor/CropHandles.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quillmere {
namespace {

bool isLeft(CropHandle handle) {
  return handle == CropHandle::topLeft || handle == CropHandle::left || handle == CropHandle::bottomLeft;
}
bool isRight(CropHandle handle) {
  return handle == CropHandle::topRight || handle == CropHandle::right || handle == CropHandle::bottomRight;
}
bool isTop(CropHandle handle) {
  return handle == CropHandle::topLeft || handle == CropHandle::top || handle == CropHandle::topRight;
}
bool isBottom(CropHandle handle) {
  return handle == CropHandle::bottomLeft || handle == CropHandle::bottom || handle == CropHandle::bottomRight;
}

/// A length along one axis, from the edge before its first pixel to the one behind its last.
struct Span {
  int from = 0;
  int to = 0;
  int length() const { return to - from; }
};

Span across(const QRect& rect) {
  return {rect.x(), rect.x() + rect.width()};
}
Span down(const QRect& rect) {
  return {rect.y(), rect.y() + rect.height()};
}
QRect spanned(Span across, Span down) {
  return {across.from, down.from, across.length(), down.length()};
}

/// Where edges go to by themselves along one axis.
using Lines = std::vector<int>;

Lines lines(const CropSelection& selection, Span (*axis)(const QRect&)) {
  Lines result{axis(selection.bounds()).from, axis(selection.bounds()).to};
  for (const WindowCandidate& window : selection.candidates()) {
    const Span span = axis(window.rect & selection.bounds());
    if (span.length() > 0) result.insert(result.end(), {span.from, span.to});
  }
  return result;
}

/// The nearest line within reach; `except` is none of them.
std::optional<int> lineNear(const Lines& lines, qreal position, qreal reach, std::optional<qreal> except = {}) {
  std::optional<int> nearest;
  for (const int line : lines) {
    if (except && std::equal_to()(*except, qreal(line))) continue;
    const qreal distance = std::abs(line - position);
    if (distance <= reach && (!nearest || distance < std::abs(*nearest - position))) nearest = line;
  }
  return nearest;
}

qreal snapped(const Lines& lines, qreal position, qreal reach, std::optional<qreal> except = {}) {
  const auto line = reach > 0 ? lineNear(lines, position, reach, except) : std::nullopt;
  return line ? *line : position;
}

/// Both ends of what is drawn, along one axis. They don't go to the same line: nothing would be left between them.
std::pair<qreal, qreal> drawn(const Lines& lines, qreal start, qreal current, qreal reach) {
  const qreal from = snapped(lines, start, reach);
  const qreal to = snapped(lines, current, reach, from);
  return std::equal_to()(from, to) ? std::pair(start, current) : std::pair(from, to);
}

/// From the edge that stays to the one that is dragged to `position`, or where that is the same one pixel on the side
/// from which it came.
Span dragged(const Lines& lines, int fixed, qreal position, qreal reach, bool comesFromBefore, int room) {
  const qreal wanted = snapped(lines, std::clamp<qreal>(position, 0, room), reach, fixed);
  const int edge = std::clamp(static_cast<int>(std::lround(wanted)), 0, room);
  if (edge != fixed) return {std::min(edge, fixed), std::max(edge, fixed)};
  const bool isBefore =
      (std::equal_to()(position, qreal(fixed)) ? comesFromBefore : position < fixed) ? fixed > 0 : fixed == room;
  return isBefore ? Span{fixed - 1, fixed} : Span{fixed, fixed + 1};
}

/// Whichever end is nearer to a line takes the other along.
Span moved(const Lines& lines, Span span, qreal by, qreal reach, int room) {
  const int last = room - span.length();
  const qreal wanted = std::clamp<qreal>(span.from + by, 0, last);
  qreal start = wanted;
  if (reach > 0) {
    const auto one = lineNear(lines, wanted, reach);
    const auto other = lineNear(lines, wanted + span.length(), reach);
    const qreal byOne = one ? *one - wanted : reach + 1;
    const qreal byOther = other ? *other - wanted - span.length() : reach + 1;
    const qreal least = std::abs(byOne) <= std::abs(byOther) ? byOne : byOther;
    if (std::abs(least) <= reach) start = wanted + least;
  }
  const int from = std::clamp(static_cast<int>(std::lround(start)), 0, last);
  return {from, from + span.length()};
}

QPointF inside(QPointF point, QSize image) {
  return {std::clamp<qreal>(point.x(), 0, image.width()), std::clamp<qreal>(point.y(), 0, image.height())};
}

}  // namespace

bool CropHandles::isCorner(CropHandle handle) {
  return (isLeft(handle) || isRight(handle)) && (isTop(handle) || isBottom(handle));
}

QPointF CropHandles::place(const QRectF& rect, CropHandle handle) {
  const qreal x = isLeft(handle) ? rect.left() : isRight(handle) ? rect.right() : rect.center().x();
  const qreal y = isTop(handle) ? rect.top() : isBottom(handle) ? rect.bottom() : rect.center().y();
  return {x, y};
}

std::optional<CropHandle> CropHandles::at(QPointF point, const QRectF& rect, qreal reach, bool isWhole) {
  if (rect.isEmpty() || !rect.adjusted(-reach, -reach, reach, reach).contains(point)) return std::nullopt;
  const qreal insideX = std::min(reach, rect.width() / 3);
  const qreal insideY = std::min(reach, rect.height() / 3);
  const bool isAtLeft = point.x() <= rect.left() + insideX;
  const bool isAtRight = point.x() >= rect.right() - insideX;
  const bool isAtTop = point.y() <= rect.top() + insideY;
  const bool isAtBottom = point.y() >= rect.bottom() - insideY;
  if (isAtTop && isAtLeft) return CropHandle::topLeft;
  if (isAtTop && isAtRight) return CropHandle::topRight;
  if (isAtBottom && isAtLeft) return CropHandle::bottomLeft;
  if (isAtBottom && isAtRight) return CropHandle::bottomRight;
  if (isAtTop) return CropHandle::top;
  if (isAtBottom) return CropHandle::bottom;
  if (isAtLeft) return CropHandle::left;
  if (isAtRight) return CropHandle::right;
  return isWhole ? std::nullopt : std::optional(CropHandle::inside);
}

Qt::CursorShape CropHandles::cursor(std::optional<CropHandle> handle) {
  if (!handle) return Qt::CrossCursor;
  switch (*handle) {
    case CropHandle::topLeft:
    case CropHandle::bottomRight:
      return Qt::SizeFDiagCursor;
    case CropHandle::topRight:
    case CropHandle::bottomLeft:
      return Qt::SizeBDiagCursor;
    case CropHandle::top:
    case CropHandle::bottom:
      return Qt::SizeVerCursor;
    case CropHandle::left:
    case CropHandle::right:
      return Qt::SizeHorCursor;
    case CropHandle::inside:
      break;
  }
  return Qt::SizeAllCursor;
}

const WindowCandidate* CropHandles::windowAt(const std::vector<WindowCandidate>& windows, QPointF pixel) {
  const QPoint at(qFloor(pixel.x()), qFloor(pixel.y()));
  const auto area = [](const WindowCandidate& window) { return qint64{window.rect.width()} * window.rect.height(); };
  const WindowCandidate* smallest = nullptr;
  for (const WindowCandidate& window : windows) {
    if (window.rect.contains(at) && (!smallest || area(window) < area(*smallest))) smallest = &window;
  }
  return smallest;
}

CropDrag::CropDrag(std::optional<CropHandle> handle, QPointF start, const CropSelection& selection)
    : handle_(selection.isEmpty() ? std::nullopt : handle), start_(start), from_(selection.selection()) {}

void CropDrag::apply(CropSelection& selection, QPointF current, qreal reach) const {
  const QSize image = selection.imageSize();
  const Lines columns = lines(selection, across);
  const Lines rows = lines(selection, down);
  if (!handle_) {
    const QPointF one = inside(start_, image);
    const QPointF other = inside(current, image);
    if (one == other) return selection.drag(one, other);
    const auto [left, right] = drawn(columns, one.x(), other.x(), reach);
    const auto [top, bottom] = drawn(rows, one.y(), other.y(), reach);
    return selection.drag({left, top}, {right, bottom});
  }
  const QPointF by = current - start_;
  Span x = across(from_);
  Span y = down(from_);
  if (*handle_ == CropHandle::inside) {
    x = moved(columns, x, by.x(), reach, image.width());
    y = moved(rows, y, by.y(), reach, image.height());
  }
  if (isLeft(*handle_)) x = dragged(columns, x.to, x.from + by.x(), reach, true, image.width());
  if (isRight(*handle_)) x = dragged(columns, x.from, x.to + by.x(), reach, false, image.width());
  if (isTop(*handle_)) y = dragged(rows, y.to, y.from + by.y(), reach, true, image.height());
  if (isBottom(*handle_)) y = dragged(rows, y.from, y.to + by.y(), reach, false, image.height());
  selection.setByHand(spanned(x, y));
}

QPoint CropDrag::point(const CropSelection& selection, QPointF current) const {
  const auto nearer = [](Span span, qreal position) {
    return std::abs(position - span.from) < std::abs(position - span.to) ? span.from : span.to;
  };
  const QPointF pointer = inside(current, selection.imageSize());
  const bool goesAcross = !handle_ || isLeft(*handle_) || isRight(*handle_);
  const bool goesDown = !handle_ || isTop(*handle_) || isBottom(*handle_);
  const bool isFree = selection.isEmpty();
  return {goesAcross && !isFree ? nearer(across(selection.selection()), pointer.x()) : qRound(pointer.x()),
          goesDown && !isFree ? nearer(down(selection.selection()), pointer.y()) : qRound(pointer.y())};
}

}  // namespace quillmere
