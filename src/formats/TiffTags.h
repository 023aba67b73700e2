#pragma once

#include <optional>
#include <string_view>

namespace quillmere {

// What the first directory of a TIFF says, the form that camera data have in every picture format.

/// Dots per inch, across. None where it has no resolution or one without a unit of length.
std::optional<double> tiffResolution(std::string_view tiff);

/// How the stored picture lies, 1 to 8 (Exif 2.32, 4.6.4, "Orientation"). 1, upright, where it doesn't say.
int tiffOrientation(std::string_view tiff);

}  // namespace quillmere
