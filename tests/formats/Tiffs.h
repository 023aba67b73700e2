#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "support/Images.h"

namespace quillmere::testing {

inline std::string littleEndian(uint32_t number, int bytes) {
  std::string result;
  for (int i = 0; i < bytes; ++i) result.push_back(static_cast<char>(number >> 8 * i));
  return result;
}
inline std::string bigEndian(uint32_t number, int bytes) {
  return bigEndian32(number).substr(static_cast<size_t>(4 - bytes));
}

/// A directory with a resolution and, if wanted, its unit.
inline std::string tiff(uint32_t numerator, uint32_t denominator, std::optional<uint32_t> unit,
                        std::string (*number)(uint32_t, int) = &bigEndian) {
  const uint32_t count = unit ? 2 : 1;
  const uint32_t place = 8 + 2 + count * 12 + 4;
  std::string result = (number == &bigEndian ? "MM" : "II") + number(42, 2) + number(8, 4) + number(count, 2);
  result += number(282, 2) + number(5, 2) + number(1, 4) + number(place, 4);
  if (unit) result += number(296, 2) + number(3, 2) + number(1, 4) + number(*unit, 2) + number(0, 2);
  return result + number(0, 4) + number(numerator, 4) + number(denominator, 4);
}

/// A directory with an orientation alone.
inline std::string orientationTiff(int orientation, std::string (*number)(uint32_t, int) = &bigEndian) {
  std::string result = (number == &bigEndian ? "MM" : "II") + number(42, 2) + number(8, 4) + number(1, 2);
  result += number(274, 2) + number(3, 2) + number(1, 4) + number(static_cast<uint32_t>(orientation), 2);
  return result + number(0, 2) + number(0, 4);
}

}  // namespace quillmere::testing
