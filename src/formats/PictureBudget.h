#pragma once

#include <cstdint>

#include "reading/PictureError.h"

namespace quillmere {

/// What reading one picture may take. Far beyond any capture; a file made to stall a program is beyond it.
struct PictureBudget {
  int64_t fileBytes = int64_t{1} << 30;
  /// Of all that is no pixels: texts, profiles, camera data.
  int64_t besidesPixels = int64_t{16} << 20;
  /// Decoded.
  int64_t pictureBytes = int64_t{1} << 30;
  /// All that is taken at the same time, the file's bytes among it.
  int64_t memory = int64_t{3} << 29;
  /// A JPEG may go over its picture as often as it says. Encoders do so ten times.
  int scans = 100;
  /// Of all scans together.
  int64_t scannedPixels = int64_t{1} << 32;
};

}  // namespace quillmere
