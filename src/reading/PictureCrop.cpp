#include "reading/PictureCrop.h"

#include <QtCore/QRect>
#include <cmath>

namespace quillmere {

using ImageOperations::OperationError;

Result<QImage, OperationError> ImageOperations::crop(const QImage& image, const QRectF& rect) {
  const double left = std::floor(rect.x());
  const double top = std::floor(rect.y());
  const double right = std::ceil(rect.x() + rect.width());
  const double bottom = std::ceil(rect.y() + rect.height());
  // Written so that a component that is no number fails each of them. In doubles, for a rectangle may lie anywhere.
  const bool isLarge = rect.width() >= 1 && rect.height() >= 1;
  const bool isInside = left >= 0 && top >= 0 && right <= image.width() && bottom <= image.height();
  if (!isLarge || !isInside) return OperationError::invalidCrop;
  QImage part = image.copy(QRect(QPoint(static_cast<int>(left), static_cast<int>(top)),
                                 QPoint(static_cast<int>(right) - 1, static_cast<int>(bottom) - 1)));
  if (part.isNull()) return OperationError::invalidCrop;
  return part;
}

}  // namespace quillmere
