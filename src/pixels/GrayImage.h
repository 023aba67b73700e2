#pragma once

#include <QtGui/QImage>
#include <cstdint>
#include <memory>
#include <optional>

#include "pixels/Instructions.h"

namespace quillmere {

/// 8-bit luminance of a picture, row-major with a stride of exactly `width`; row 0 is the top one.
class GrayImage {
 public:
  /// Bytes after the last pixel that may be read, so that vector code needs no special last step.
  static constexpr int64_t kPadding = 64;

  /// Of undefined luminance.
  GrayImage(int64_t width, int64_t height);

  int64_t width() const { return width_; }
  int64_t height() const { return height_; }
  uint8_t* row(int64_t y) { return pixels_.get() + y * width_; }
  const uint8_t* row(int64_t y) const { return pixels_.get() + y * width_; }
  uint8_t at(int64_t x, int64_t y) const { return row(y)[x]; }

 private:
  int64_t width_;
  int64_t height_;
  std::unique_ptr<uint8_t[]> pixels_;
};

/// The luminance of an upright picture at full size, by the weights of Rec. ITU-R BT.709 in 128ths; what shows through
/// counts as black. None for a picture that is below 9 pixels in width or height.
std::optional<GrayImage> grayImage(const QImage& image);

/// The luminance of `count` pixels of 0xffRRGGBB. Exposed for the tests.
void grayRow(const uint32_t* pixels, uint8_t* gray, int64_t count, Instructions instructions = bestInstructions());

}  // namespace quillmere
