#pragma once

#include <QtCore/QSize>
#include <string_view>

#include "formats/PictureBudget.h"
#include "foundation/Result.h"
#include "records/PictureFormat.h"

namespace quillmere {

/// What a picture will take, as told by its file before anything is decoded.
struct PictureOutline {
  /// The head of a HEIF may lie anywhere, so that all of it is read for its size.
  static constexpr int64_t kMostHeifBytes = 128 << 20;

  PictureFormat format = PictureFormat::png;
  QSize stored;              ///< in pixels, not turned; of HEIF it is upright
  int64_t pictureBytes = 0;  ///< decoded
  int64_t memory = 0;        ///< while it is decoded, without the file's bytes

  /// Of the bytes of a whole file. Fails also where more than `budget` is promised, or more than the file can hold.
  static Result<PictureOutline, PictureError> of(std::string_view file, const PictureBudget& budget);
  /// Of a file's beginning: of a PNG its first chunk, of a JPEG all up to its first scan, of a HEIF the whole.
  static Result<PictureOutline, PictureError> ofBeginning(std::string_view beginning, int64_t fileBytes,
                                                          const PictureBudget& budget);
};

}  // namespace quillmere
