#pragma once

#include <QtCore/QString>

namespace quillmere {

/// Why a picture was not read.
enum class PictureError {
  unreadable,  ///< the file cannot be read: gone, refused, or no file
  noPicture,   ///< of none of the formats
  damaged,     ///< it ends early, or promises what it does not hold
  tooCostly,   ///< it would take more than its budget
};

/// For the person, where a picture of theirs should stand.
QString description(PictureError error);

}  // namespace quillmere
