#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace quillmere::WindowShadow {

struct FallOff {
  enum class Kind { extentFound, clear, unreadable };
  Kind kind = Kind::unreadable;
  int64_t extent = 0;
  double nearResidual = 0;  ///< how much darker it is beside the window than the background's trend foretells
  bool operator==(const FallOff&) const = default;
};
/// Where a brightness profile begins to drop below the line of its background.
FallOff fallOff(const std::vector<double>& profile);

/// The middle value, or the mean of the two middle ones. None of none.
std::optional<double> median(std::vector<double> values);
/// A standard deviation that outliers do not move: 1.4826 times the median distance from the median; 0 of none.
double robustSigma(const std::vector<double>& values);

}  // namespace quillmere::WindowShadow
