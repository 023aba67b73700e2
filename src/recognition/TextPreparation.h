#pragma once

#include <QtGui/QImage>
#include <vector>

#include "recognition/TextLines.h"

namespace quillmere {

struct PreparedPart {
  QImage image;
  double left = 0;   ///< where its first column stands in the picture
  double scale = 1;  ///< of its columns to those of the picture
};

/// The line as print: dark on white whatever its colours, without anything that is not part of it, and as high as the
/// engine likes it best. A long one comes in parts, cut between words. `grounds` are those of `image`.
std::vector<PreparedPart> preparedLine(const QImage& image, const TextGrounds& grounds, const TextLine& line);

}  // namespace quillmere
