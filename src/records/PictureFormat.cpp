#include "records/PictureFormat.h"

#include <QtCore/QtGlobal>
#include <algorithm>

namespace quillmere {
namespace {

using namespace std::string_view_literals;

constexpr std::array kPngExtensions{"png"sv};
constexpr std::array kJpegExtensions{"jpeg"sv, "jpg"sv};
constexpr std::array kHeifExtensions{"heic"sv, "heif"sv};

constexpr PictureFormatTraits kPng{.extensions = kPngExtensions,
                                   .contentType = "image/png",
                                   .signature = {0, "\x89PNG\r\n\x1a\n"sv},
                                   .endMark = "IEND\xAE\x42\x60\x82"sv,
                                   .isWritable = true};
constexpr PictureFormatTraits kJpeg{.extensions = kJpegExtensions,
                                    .contentType = "image/jpeg",
                                    .signature = {0, "\xFF\xD8"sv},
                                    .endMark = "\xFF\xD9"sv,
                                    .isWritable = true};
// A file of boxes, each with its length, of which the first has the length of its own and then this name.
constexpr PictureFormatTraits kHeif{.extensions = kHeifExtensions,
                                    .contentType = "image/heif",
                                    .signature = {4, "ftyp"sv},
                                    .endMark = {},
                                    .isWritable = true};

char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool equalsInAnyCase(std::string_view text, std::string_view lower) {
  return std::equal(text.begin(), text.end(), lower.begin(), lower.end(),
                    [](char a, char b) { return lowerCase(a) == b; });
}

template <typename Predicate>
std::optional<PictureFormat> formatWhose(const Predicate& isIts) {
  const auto found = std::find_if(kPictureFormats.begin(), kPictureFormats.end(),
                                  [&](PictureFormat format) { return isIts(traits(format)); });
  return found == kPictureFormats.end() ? std::nullopt : std::optional(*found);
}

}  // namespace

const PictureFormatTraits& traits(PictureFormat format) {
  switch (format) {
    case PictureFormat::png:
      return kPng;
    case PictureFormat::jpeg:
      return kJpeg;
    case PictureFormat::heif:
      return kHeif;
  }
  Q_UNREACHABLE();
}

std::string fileExtension(PictureFormat format) {
  return std::string(traits(format).extensions.front());
}

std::optional<PictureFormat> formatOfExtension(std::string_view extension) {
  return formatWhose([extension](const PictureFormatTraits& format) {
    return std::any_of(format.extensions.begin(), format.extensions.end(),
                       [extension](std::string_view own) { return equalsInAnyCase(extension, own); });
  });
}

std::optional<PictureFormat> formatOfSignature(std::string_view head) {
  return formatWhose([head](const PictureFormatTraits& format) {
    const auto& [offset, bytes] = format.signature;
    return head.size() >= offset && head.substr(offset).starts_with(bytes);
  });
}

}  // namespace quillmere
