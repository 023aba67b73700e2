#pragma once

#include <string>

#include "formats/ImageFile.h"
#include "formats/ImageOperations.h"
#include "formats/ImageScale.h"
#include "png/PngTexts.h"

namespace quillmere::testing {

inline std::string told(PictureError error) {
  switch (error) {
    case PictureError::unreadable:
      return "unreadable";
    case PictureError::noPicture:
      return "noPicture";
    case PictureError::damaged:
      return "damaged";
    case PictureError::tooCostly:
      return "tooCostly";
  }
  return {};
}
inline std::string told(QSize size) {
  return std::to_string(size.width()) + "x" + std::to_string(size.height());
}

/// All that is asked of a picture file, and what its header, its picture and its end are: sizes, or why there is none.
/// Whoever is given other answers by two of the ways in is told "unsteady".
inline std::string outcomeOfPicture(const FileURL& url) {
  const auto size = ImageFile::pixelSize(url);
  const auto failure = ImageFile::failureOf(url);
  std::string read;
  {
    const auto picture = ImageFile::read(url);
    read = picture ? told(picture->size()) : told(picture.reason());
    if (!failure && !picture) return "unsteady: whole and no picture";
    if (picture && size && picture->size() != *size) return "unsteady: header and picture";
  }
  constexpr int kSmall = 256;
  const auto small = ImageFile::readSmall(url, kSmall);
  if ((small ? "" : told(small.reason())) != (read.find('x') != std::string::npos ? "" : read))
    return "unsteady: small";
  if (small && (small->width() > kSmall || small->height() > kSmall)) return "unsteady: not small";
  ImageOperations::imageScale(url);
  return (size ? told(*size) : "none") + ", " + read + ", " + (failure ? told(*failure) : "whole");
}

}  // namespace quillmere::testing
