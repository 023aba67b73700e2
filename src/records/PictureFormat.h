#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quillmere {

/// The formats that a screenshot can have. Each of them is watched for, and read.
enum class PictureFormat { png, jpeg, heif };
inline constexpr std::array kPictureFormats{PictureFormat::png, PictureFormat::jpeg, PictureFormat::heif};

/// Bytes that every file of a format has at one place near its beginning.
struct PictureSignature {
  size_t offset = 0;
  std::string_view bytes;
};

/// What is to be known of a format wherever pictures are met.
struct PictureFormatTraits {
  /// In lower case, without the full stop. The first is given to new files.
  std::span<const std::string_view> extensions;
  const char* contentType = "";  ///< as MIME names it
  PictureSignature signature;
  /// What a whole file ends with, though other data may follow. Empty where only the decoder can tell.
  std::string_view endMark;
  /// Whether a picture can be written in it. One that replaces a file keeps the file's format, or isn't written.
  bool isWritable = false;
};

const PictureFormatTraits& traits(PictureFormat format);

/// What the name of a new file ends with, behind the full stop.
std::string fileExtension(PictureFormat format);

/// None for an extension that stands for no such format; in any case of its letters.
std::optional<PictureFormat> formatOfExtension(std::string_view extension);

/// By the first bytes of a file, of which 16 are enough. Others than pictures may begin as HEIF does: its decoder says.
std::optional<PictureFormat> formatOfSignature(std::string_view head);

}  // namespace quillmere
