#pragma once

#include <QtCore/QByteArray>
#include <optional>

#include "foundation/FileURL.h"
#include "reading/PictureReading.h"

namespace quillmere {

/// A picture as a model server takes it.
struct ModelPicture {
  /// Models look at 900 to 1300 pixels, or pay a token for each 28 × 28: of this size a wide capture costs 1,700
  /// tokens, which leaves room in a context of 8,192, and the small print can still be read.
  static constexpr int kLongestSide = 1536;

  QByteArray bytes;
  const char* type = "";  ///< its content type

  /// The file's own bytes where every server can read them and they are small enough, otherwise a smaller PNG. None
  /// when the file cannot be read. Not for the main thread.
  static std::optional<ModelPicture> read(PictureReading& pictures, const FileURL& url);
};

}  // namespace quillmere
