#pragma once

#include <optional>
#include <string_view>

namespace quillmere {

/// Dots per inch, across, from the first directory of a TIFF, the form that camera data have in every picture format.
/// None where it has no resolution or one without a unit of length.
std::optional<double> tiffResolution(std::string_view tiff);

}  // namespace quillmere
