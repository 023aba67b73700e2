#include "reading/ScreenPicture.h"

#include <QtGui/QColorSpace>

namespace quillmere {

QImage pictureForScreen(QImage image) {
  const QColorSpace space = image.colorSpace();
  if (space.isValid() && space != QColorSpace(QColorSpace::SRgb)) image.convertToColorSpace(QColorSpace::SRgb);
  const auto wanted = image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
  return std::move(image).convertToFormat(wanted);
}

}  // namespace quillmere
