#pragma once

#include <QtGui/QImage>
#include <vector>

#include "recognition/TextLines.h"

namespace quillmere {

/// The line as print: dark on white whatever its colours, without anything that is not part of it, and as high as the
/// engine likes it best. A long one comes in parts, cut between words. `grounds` are those of `image`.
std::vector<QImage> preparedLine(const QImage& image, const TextGrounds& grounds, const TextLine& line);

}  // namespace quillmere
