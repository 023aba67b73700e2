#include "formats/ImageOperations.h"

#include <QtCore/QRect>
#include <cmath>

#include "formats/ImageFile.h"
#include "foundation/Localized.h"

namespace quillmere {

using ImageOperations::Failure;
using ImageOperations::OperationError;

QString ImageOperations::description(OperationError error) {
  switch (error) {
    case OperationError::unreadable:
      return localized(
          "The screenshot couldn’t be opened. It may have moved or expired. Choose it again from the Inbox.");
    case OperationError::tooCostly:
      return quillmere::description(PictureError::tooCostly);
    case OperationError::invalidCrop:
      return localized("Choose a crop with a positive width and height inside the image.");
    case OperationError::encoding:
      return localized("The cropped image couldn’t be saved. The original hasn’t changed. Try saving again.");
    case OperationError::destinationExists:
      return localized("A file already exists with that name. Choose a different name to avoid replacing it.");
    case OperationError::noScreenshotFolder:
      return localized("Choose a screenshot folder in Settings, then save again.");
  }
  return {};
}

QString ImageOperations::description(const Failure& failure) {
  if (const auto* error = std::get_if<OperationError>(&failure)) return description(*error);
  // A sentence, for it stands before others.
  return QString::fromStdString(std::get<std::error_code>(failure).message()) + QLatin1Char('.');
}

bool ImageOperations::isFileMissing(const Failure& failure) {
  const auto* code = std::get_if<std::error_code>(&failure);
  return code && *code == std::errc::no_such_file_or_directory;
}

OperationError ImageOperations::operationError(PictureError error) {
  return error == PictureError::tooCostly ? OperationError::tooCostly : OperationError::unreadable;
}

Result<QImage, OperationError> ImageOperations::loadImage(const FileURL& url) {
  auto picture = ImageFile::read(url);
  if (!picture) return operationError(picture.reason());
  return *std::move(picture);
}

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
