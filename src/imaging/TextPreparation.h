#pragma once

#include <QtGui/QImage>

#include "imaging/TextLines.h"

namespace quillmere {

/// The line as print: dark on white whatever its colours, without anything that is not part of it, and as high as the
/// engine likes it best. `image` is what its grounds were found in.
QImage preparedLine(const QImage& image, const TextLine& line);

}  // namespace quillmere
