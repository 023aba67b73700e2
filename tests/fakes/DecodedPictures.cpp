#include "fakes/DecodedPictures.h"

#include "detection/CapturedWindows.h"
#include "detection/WindowScan.h"
#include "formats/ImageEncoding.h"
#include "formats/ImageFile.h"
#include "reading/ScreenPicture.h"

namespace quillmere::testing {

std::optional<PictureHead> DecodedPictures::head(const FileURL& url) {
  return ImageFile::head(url);
}

std::optional<PictureError> DecodedPictures::failureOf(const FileURL& url) {
  return ImageFile::failureOf(url);
}

PictureReading::Picture DecodedPictures::picture(const FileURL& url, const Stop&) {
  return ImageFile::read(url);
}

PictureReading::Picture DecodedPictures::thumbnail(const FileURL& url, int maxPixels, const Stop&) {
  return forScreen(ImageFile::readSmall(url, maxPixels));
}

PictureReading::Picture DecodedPictures::thumbnail(std::string_view bytes, int maxPixels) {
  return forScreen(ImageFile::readSmall(bytes, maxPixels));
}

PictureReading::Picture DecodedPictures::forScreen(Picture picture) {
  if (!picture) return picture;
  return pictureForScreen(*std::move(picture));
}

Result<ImageOperations::WindowScan, ImageOperations::OperationError> DecodedPictures::windows(
    const FileURL& url, const std::optional<KnownWindows>& known, const Stop& isStopped) {
  return ImageOperations::scanWindowsNow(
      url, [&] { return isStopped.load(); }, known);
}

std::optional<KnownWindows> DecodedPictures::knownWindows(const FileURL& url, const std::vector<WindowStack>& states,
                                                          Date closedAt, const Stop&) {
  return CapturedWindows::resolve(ImageFile::picture(url), states, closedAt);
}

std::optional<QString> DecodedPictures::text(const FileURL& url, const Stop& isStopped) {
  const QImage image = ImageFile::picture(url);
  const std::lock_guard lock(recognizing_);
  return image.isNull() ? std::nullopt : recognizer_.recognizeText(image, isStopped);
}

Result<QByteArray, ImageOperations::OperationError> DecodedPictures::encoded(const QImage& image,
                                                                             PictureFormat format) {
  return ImageOperations::encode(image, format);
}

}  // namespace quillmere::testing
