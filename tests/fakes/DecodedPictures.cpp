#include "fakes/DecodedPictures.h"

#include "detection/WindowScan.h"
#include "formats/ImageEncoding.h"
#include "formats/ImageFile.h"
#include "reading/ScreenPicture.h"

namespace quillmere::testing {

std::optional<PictureHead> DecodedPictures::head(const FileURL& url) {
  return ImageFile::head(url);
}

bool DecodedPictures::decodesCompletely(const FileURL& url) {
  return ImageFile::decodesCompletely(url);
}

QImage DecodedPictures::picture(const FileURL& url, const Stop&) {
  return ImageFile::picture(url);
}

QImage DecodedPictures::thumbnail(const FileURL& url, int maxPixels, const Stop&) {
  return pictureForScreen(ImageFile::thumbnail(url, maxPixels));
}

QImage DecodedPictures::thumbnail(std::string_view bytes, int maxPixels) {
  return pictureForScreen(ImageFile::thumbnail(bytes, maxPixels));
}

Result<ImageOperations::WindowScan, ImageOperations::OperationError> DecodedPictures::windows(const FileURL& url,
                                                                                              const Stop& isStopped) {
  return ImageOperations::scanWindowsNow(url, [&] { return isStopped.load(); });
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
