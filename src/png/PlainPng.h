#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

/// The first chunk of a PNG.
struct PngHeader {
  /// None where the file does not begin with one.
  static std::optional<PngHeader> of(std::string_view file);

  uint32_t width;
  uint32_t height;
  uint8_t depth;  ///< bits in a channel
  uint8_t colourType;
  bool isPlain;  ///< not interlaced, and compressed and filtered by the methods that there are

  int channels() const;
  size_t rowBytes() const { return (size_t{width} * channels() * depth + 7) / 8; }
  /// Every row has the number of its filter before it.
  size_t filteredBytes() const { return height * (1 + rowBytes()); }
  /// Whether the size and the form are ones that there are.
  bool isValid() const;
  /// Beyond what the library behind the general reader takes.
  bool isTooLarge() const;
};

/// A PNG with 8 bits a channel, RGB or RGBA, not interlaced and without a transparent colour, whose checksums are right
/// and whose chunks stand in order. Its data are not looked into. All texts are views into the file's bytes.
struct PlainPng {
  static std::optional<PlainPng> of(std::string_view file);

  PngHeader header;
  /// What tells the colour space and the resolution, as whole chunks.
  std::string description;
  /// The parts of the compressed data; one at least.
  std::vector<std::string_view> compressed;
};

}  // namespace quillmere
