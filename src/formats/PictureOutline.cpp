#include "formats/PictureOutline.h"

#include <algorithm>

#include "formats/HeifFile.h"
#include "formats/HeifReferences.h"
#include "formats/ImageFile.h"
#include "formats/JpegOutline.h"
#include "formats/PngReader.h"
#include "png/PlainPng.h"

namespace quillmere {
namespace {

using Outcome = Result<PictureOutline, PictureError>;

/// A decoder of HEIF keeps the planes of a picture, its colours, and they are converted once more.
constexpr int64_t kHeifBytesPerPixel = 12;
constexpr int64_t kScreenBytesPerPixel = 4;

int64_t pixels(QSize size) {
  return int64_t{size.width()} * size.height();
}

Outcome within(const PictureBudget& budget, const PictureOutline& outline, int64_t fileBytes) {
  const bool isWithin = outline.pictureBytes <= budget.pictureBytes && fileBytes + outline.memory <= budget.memory;
  return isWithin ? Outcome(outline) : Outcome(PictureError::tooCostly);
}

Outcome outlineOfPng(std::string_view beginning, int64_t fileBytes, const PictureBudget& budget) {
  const auto header = PngHeader::of(beginning);
  if (!header || !header->isValid()) return PictureError::damaged;
  if (header->isTooLarge()) return PictureError::tooCostly;
  PictureOutline outline{PictureFormat::png, QSize(static_cast<int>(header->width), static_cast<int>(header->height))};
  constexpr int kDeep = 16;
  outline.pictureBytes = pixels(outline.stored) * (header->depth == kDeep ? 2 : 1) * kScreenBytesPerPixel;
  // Rows are unpacked where the picture comes to stand, or before the general reader does it, to be counted.
  outline.memory = outline.pictureBytes;
  // Before the other bound: such a file is a damaged one, whatever it promises.
  const auto filtered = static_cast<int64_t>(header->filteredBytes());
  if (filtered / PngReader::kBestCompression > fileBytes) return PictureError::damaged;
  // What doesn't compress takes hardly more than it is; the rest of the file is texts, or nothing of the picture.
  if (fileBytes > 2 * filtered + budget.besidesPixels) return PictureError::tooCostly;
  return within(budget, outline, fileBytes);
}

Outcome outlineOfJpeg(std::string_view beginning, int64_t fileBytes, const PictureBudget& budget) {
  const auto jpeg = JpegOutline::of(beginning);
  const bool isHeadLong = static_cast<int64_t>(beginning.size()) >= budget.besidesPixels;
  if (!jpeg) return isHeadLong ? PictureError::tooCostly : PictureError::damaged;
  // The decoder takes memory for whatever the header says and fills in what is not there. Even a white picture has a
  // bit for each block of 64 pixels.
  constexpr int64_t kMostPixelsInAByte = 1024;
  if (jpeg->pixels() / kMostPixelsInAByte > fileBytes) return PictureError::damaged;
  PictureOutline outline{PictureFormat::jpeg, QSize(static_cast<int>(jpeg->width), static_cast<int>(jpeg->height))};
  outline.pictureBytes = jpeg->pixels() * kScreenBytesPerPixel;
  outline.memory = outline.pictureBytes;
  if (jpeg->comesInScans()) outline.memory += jpeg->pixels() * jpeg->components * int64_t{sizeof(int16_t)};
  // No encoder takes more bytes than samples have, twice over for its scans; the rest is nothing of the picture.
  if (fileBytes > 4 * outline.pictureBytes + budget.besidesPixels) return PictureError::tooCostly;
  const bool isLong = jpeg->scans > budget.scans || jpeg->scans > budget.scannedPixels / jpeg->pixels();
  if (isLong || jpeg->besidesPixels > budget.besidesPixels) return PictureError::tooCostly;
  return within(budget, outline, fileBytes);
}

Outcome outlineOfHeif(std::string_view file, int64_t fileBytes, const PictureBudget& budget) {
  if (fileBytes > PictureOutline::kMostHeifBytes) return PictureError::tooCostly;
  const bool isDescribedAtLength = heifDescriptionBytes(file) > budget.besidesPixels;
  if (isDescribedAtLength || heifReferences(file) == HeifReferences::costly) return PictureError::tooCostly;
  const auto size = HeifFile(file).size();
  if (!size) return PictureError::damaged;
  PictureOutline outline{PictureFormat::heif, *size};
  outline.pictureBytes = pixels(*size) * kScreenBytesPerPixel;
  outline.memory = pixels(*size) * kHeifBytesPerPixel;
  return within(budget, outline, fileBytes);
}

}  // namespace

Outcome PictureOutline::of(std::string_view file, const PictureBudget& budget) {
  return ofBeginning(file, static_cast<int64_t>(file.size()), budget);
}

Outcome PictureOutline::ofBeginning(std::string_view beginning, int64_t fileBytes, const PictureBudget& budget) {
  const auto format = ImageFile::formatOf(beginning);
  if (!format) return PictureError::noPicture;
  if (fileBytes > budget.fileBytes) return PictureError::tooCostly;
  switch (*format) {
    case PictureFormat::png:
      return outlineOfPng(beginning, fileBytes, budget);
    case PictureFormat::jpeg:
      return outlineOfJpeg(beginning, fileBytes, budget);
    case PictureFormat::heif:
      return outlineOfHeif(beginning, fileBytes, budget);
  }
  return PictureError::noPicture;
}

}  // namespace quillmere
