#include "reading/OperationError.h"

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

}  // namespace quillmere
