#pragma once

#include "recognition/TextGrounds.h"

namespace quillmere {

/// Marks what stands out so little that it was taken for a gradual change of its ground: text of disabled entries, of
/// comments, of line numbers. It is found beside areas that are of one exact colour alone.
/// `grounds` are of each pixel of `image`, row by row.
void markFaintInk(const QImage& image, std::vector<TextGrounds::Ground>& grounds);

}  // namespace quillmere
