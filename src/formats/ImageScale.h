#pragma once

#include <optional>
#include <string_view>

#include "foundation/FileURL.h"

namespace quillmere::ImageOperations {

/// Pixels per point, of a picture that came from a display at scale 1, 2 or 3: its resolution is within 1 dpi of 72
/// times that. None where the file does not say so.
std::optional<double> imageScale(const FileURL& url);
/// The same of a file that was read already.
std::optional<double> imageScale(std::string_view file);

}  // namespace quillmere::ImageOperations
